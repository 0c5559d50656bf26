/// Regions of an image as sets of runs.
#ifndef FILTERPROCESSOR_KERNELS_SPECKLE_SPECKLE_REGIONS_H
#define FILTERPROCESSOR_KERNELS_SPECKLE_SPECKLE_REGIONS_H

#include <initializer_list>

#include "kernels/speckle/speckle_links.h"
#include "kernels/speckle/work_space.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {
namespace {

/// Keeps the first bit of each stretch that begins with a bit of `starts`. The sum carries through a
/// stretch from its first bit on, so a bit is the first exactly when nothing is carried into it.
[[maybe_unused]] void keep_first_bits(const std::uint64_t* bits, const std::uint64_t* starts,
                                      std::size_t words, std::uint64_t* first) {
  std::uint64_t stretches[64];
  for (std::size_t i = 0; i < words; ++i) stretches[i] = bits[i] | ~starts[i];
  add_long(bits, stretches, first, words);
  for (std::size_t i = 0; i < words; ++i) first[i] = bits[i] & (starts[i] | ~first[i]);
}

/// Lists the positions of the set bits of up to 64 words, and up to 64 values of no meaning.
/// @return the number of set bits
[[maybe_unused]] std::size_t list_positions(const std::uint64_t* bits, std::size_t words,
                                            std::uint16_t* to) {
  std::size_t listed = 0;
  for (std::uint64_t left = nonzero_words(bits, words); left != 0; left &= left - 1) {
    const auto i = static_cast<std::size_t>(__builtin_ctzll(left));
    listed += write_positions(bits[i], static_cast<std::uint16_t>(i * kWordBits), to + listed);
  }
  return listed;
}

/// Finds the regions of an image of `width` x `height` pixels without gaps between rows, taken as one
/// sequence.
///
/// A region is what can be reached from its first pixel over pixels of no earlier region. With one
/// threshold for all, links have no direction and regions are the connected sets of runs of pixels joined
/// to their left. Thresholds by value make some links lead one way only. Pixels with links both ways
/// between them always end up in one region, that of the first pixel that reaches any of them; so runs
/// are made and united by links both ways, and the other links then lead between sets of runs.
///
/// Every pixel is in a run; those of invalid pixels are never united. Runs also end with a row and with a
/// batch of kBatch pixels.
template <typename Threshold>
class Regions {
 public:
  static constexpr std::size_t kBatchWords = 64;
  static constexpr std::size_t kBatch = kBatchWords * kWordBits;

  Regions(const std::uint16_t* pixels, std::size_t width, std::size_t height, std::uint16_t invalid,
          const Threshold& threshold)
      : words_(pixels, width, width * height, invalid),
        threshold_(threshold),
        pixels_(pixels),
        width_(width),
        count_(width * height),
        invalid_(invalid) {}

  /// Finds all regions. `limit` is the largest that anyone asks for; `prepare(batch)` is called before
  /// the pixels of a batch and the row below it are read.
  /// @return false if the work space is too small, and then nothing has been found. Of 9 bytes a pixel,
  /// bit masks
  ///         take 0.3 (with a table 0.6), each run 8 and with one-way links 12, each such link 8: enough
  ///         for a run a pixel in all but the smallest images, but not for a one-way link in every third
  ///         pixel besides.
  template <typename Prepare>
  bool find(std::int32_t limit, WorkSpace work, Prepare prepare) {
    limit_ = limit;
    if (!take_space(work)) return false;
    for (std::size_t batch = 0; batch < batches_; ++batch) {
      prepare(batch);
      if (!add_batch(batch)) return false;
    }
    if (one_way_ != 0) follow_one_way_links();
    return true;
  }

  /// Calls `visit(first pixel, number of pixels)` for the pixels of the regions to remove, in order:
  /// those whose first pixel and size `is_removed` says so of, if `by_place`, else those of at most
  /// `limit` pixels.
  template <typename IsRemoved, typename Visit>
  void visit_removed(std::int32_t limit, bool by_place, IsRemoved is_removed, Visit visit) {
    for (std::size_t batch = 0; batch < batches_; ++batch) {
      const std::size_t first_pixel = batch * kBatch;
      const std::size_t count = list_starts(batch);
      std::int32_t* const nodes = nodes_ + first_run_[batch];
      for (std::size_t i = 0; by_place && i < count; ++i) {
        if (nodes[i] >= 0) continue;
        nodes[i] = is_removed(first_pixel + starts_list_[i], -nodes[i]) ? -1 : kNeverRemoved;
      }
      const std::int32_t smallest = by_place ? -1 : -limit;
      std::size_t listed = 0;
      for (std::size_t i = 0; i < count; ++i) {
        // Parents come first, so theirs are sizes already.
        const auto self = static_cast<std::int32_t>(first_run_[batch] + i);
        nodes[i] = nodes_[choose(nodes[i] < 0, self, nodes[i])];
        joins_list_[listed] = static_cast<std::uint16_t>(i);
        listed += nodes[i] >= smallest;
      }
      for (std::size_t i = 0; i < listed;) {
        const std::size_t start = starts_list_[joins_list_[i]];
        std::size_t end;
        do {
          end = starts_list_[joins_list_[i] + 1u];
        } while (++i < listed && starts_list_[joins_list_[i]] == end);
        visit(first_pixel + start, end - start);
      }
    }
  }

 private:
  /// A link from a set of runs to the set `to`. Those of one set form a ring.
  struct OneWayLink {
    std::uint32_t to;
    std::uint32_t next;
  };

  /// Bits for the pixels of a batch.
  struct Masks {
    std::uint64_t up[kBatchWords];     // linked with the pixel above, both ways
    std::uint64_t above[kBatchWords];  // the pixel above begins a run
    std::uint64_t to_left[kBatchWords], from_left[kBatchWords], to_up[kBatchWords], from_up[kBatchWords];
  };

  static constexpr std::int32_t kNeverRemoved = -2147483647;  // as a node
  static constexpr std::size_t kListSlack = 64;  // what write_positions() may write past its result

  bool take_space(WorkSpace& work) {
    const std::size_t lead = width_ / kWordBits + 2;  // words of pixels before the first
    const std::size_t count = lead + (count_ + kWordBits - 1) / kWordBits;
    batches_ = (count_ + kBatch - 1) / kBatch;
    valid_ = work.take<std::uint64_t>(count);
    starts_ = work.take<std::uint64_t>(count);
    before_ = work.take<std::uint32_t>(count);
    first_run_ = work.take<std::uint32_t>(batches_ + 1);
    if constexpr (!Threshold::symmetric) {
      right_ = work.take<std::uint64_t>(count);
      down_ = work.take<std::uint64_t>(count);
      batch_has_one_way_ = work.take<bool>(batches_);
    }
    room_ = work.room<std::int32_t>();
    nodes_ = work.take<std::int32_t>(room_);
    if (nodes_ == nullptr || room_ == 0) return false;
    ++nodes_;  // the one before the first is where join() puts what is not wanted
    --room_;
    for (std::size_t i = 0; i < lead; ++i) {
      valid_[i] = starts_[i] = 0;
      if constexpr (!Threshold::symmetric) right_[i] = down_[i] = 0;
    }
    valid_ += lead;
    starts_ += lead;
    before_ += lead;
    if constexpr (!Threshold::symmetric) right_ += lead, down_ += lead;
    first_run_[0] = 0;
    return true;
  }

  /// `yes` or `no`, never by a branch: which one is hard to foresee.
  static std::int32_t choose(bool condition, std::int32_t yes, std::int32_t no) {
    const std::int32_t mask = -static_cast<std::int32_t>(condition);
    return (yes & mask) | (no & ~mask);
  }

  std::size_t first_word(std::size_t batch) const { return batch * kBatchWords; }
  std::size_t words_in(std::size_t batch) const {
    const std::size_t left = (count_ + kWordBits - 1) / kWordBits - first_word(batch);
    return left < kBatchWords ? left : kBatchWords;
  }

  std::size_t pixels_in(std::size_t batch) const {
    const std::size_t left = count_ - batch * kBatch;
    return left < kBatch ? left : kBatch;
  }

  /// The bits of the pixels above, for `words` words.
  void shift_down_a_row(const std::uint64_t* bits, std::size_t word, std::size_t words,
                        std::uint64_t* to) const {
    const auto at = static_cast<std::ptrdiff_t>(word * kWordBits) - static_cast<std::ptrdiff_t>(width_);
    const std::uint64_t* from = bits + (at >> 6);
    const int low = static_cast<int>(at & 63);
    for (std::size_t i = 0; i < words; ++i) to[i] = from[i] >> low | from[i + 1] << 1 << (63 - low);
  }

  /// Compares the pixels of a batch with their neighbours.
  void scan(std::size_t batch, Masks& masks) {
    const std::size_t first = first_word(batch);
    const std::size_t words = words_in(batch);
    std::uint64_t left[kBatchWords];
    std::uint64_t row_starts[kBatchWords];
    for (std::size_t i = 0; i < words; ++i) {
      const LinkBits link = words_.links((first + i) * kWordBits, threshold_);
      valid_[first + i] = link.valid;
      left[i] = link.left;
      masks.up[i] = link.up;
      row_starts[i] = 0;
      if constexpr (!Threshold::symmetric) {
        right_[first + i] = link.right;
        down_[first + i] = link.down;
      }
    }
    const std::size_t end = words * kWordBits;
    for (std::size_t x = (width_ - batch * kBatch % width_) % width_; x < end; x += width_) {
      row_starts[x / kWordBits] |= std::uint64_t{1} << (x % kWordBits);
    }

    const std::uint64_t* const valid = valid_ + first;
    std::uint64_t* const starts = starts_ + first;
    for (std::size_t i = 0; i < words; ++i) {
      const std::uint64_t left_valid = valid[i] << 1 | (valid - 1)[i] >> 63;
      const std::uint64_t both = valid[i] & left_valid & ~row_starts[i];
      std::uint64_t joined = left[i] & both;
      if constexpr (!Threshold::symmetric) {
        const std::uint64_t back = right_[first + i] << 1 | (right_ + first - 1)[i] >> 63;
        masks.to_left[i] = joined & ~back;
        masks.from_left[i] = both & back & ~left[i];
        joined &= back;
      }
      starts[i] = ~joined & (valid[i] | left_valid | row_starts[i]);
    }
    // What is behind the last pixel begins no run.
    if (first * kWordBits + end > count_)
      starts[words - 1] &= ~std::uint64_t{0} >> (first * kWordBits + end - count_);
    joined_back_ = (valid[0] & ~starts[0] & 1) != 0;
    starts[0] |= 1;

    std::uint64_t above_valid[kBatchWords];
    shift_down_a_row(valid_, first, words, above_valid);
    shift_down_a_row(starts_, first, words, masks.above);
    if constexpr (Threshold::symmetric) {
      for (std::size_t i = 0; i < words; ++i) masks.up[i] &= valid[i] & above_valid[i];
    } else {
      std::uint64_t down[kBatchWords];
      shift_down_a_row(down_, first, words, down);
      for (std::size_t i = 0; i < words; ++i) {
        const std::uint64_t both = valid[i] & above_valid[i];
        const std::uint64_t up = masks.up[i];
        masks.to_up[i] = both & up & ~down[i];
        masks.from_up[i] = both & down[i] & ~up;
        masks.up[i] = both & up & down[i];
      }
    }
  }

  /// The run of a pixel.
  std::uint32_t run_at(std::size_t pixel) const {
    const std::size_t word = pixel / kWordBits;
    return before_[word] - 1 +
           static_cast<std::uint32_t>(__builtin_popcountll(starts_[word] << (~pixel & 63)));
  }

  bool add_batch(std::size_t batch) {
    Masks masks;
    scan(batch, masks);
    const std::size_t first = first_word(batch);
    const std::size_t words = words_in(batch);
    const std::size_t first_pixel = batch * kBatch;
    const std::uint32_t first_run = first_run_[batch];

    std::uint32_t run = first_run;
    for (std::size_t i = 0; i < words; ++i) {
      before_[first + i] = run;
      run += static_cast<std::uint32_t>(__builtin_popcountll(starts_[first + i]));
    }
    first_run_[batch + 1] = run;
    if (run > room_) return false;
    if constexpr (!Threshold::symmetric) {
      if (!note_one_way(batch, masks)) return false;
    }

    list_starts(batch);
    std::int32_t* const nodes = nodes_ + first_run;
    for (std::size_t i = 0; i < run - first_run; ++i) {
      const bool invalid = pixels_[first_pixel + starts_list_[i]] == invalid_;
      nodes[i] = choose(invalid, kNeverRemoved, starts_list_[i] - starts_list_[i + 1]);
    }
    // A run takes the set of the first run above that it touches; only what it touches besides unites
    // sets.
    std::uint64_t takes[kBatchWords], pairs[kBatchWords];
    keep_first_bits(masks.up, starts_ + first, words, takes);
    const std::size_t taking = list_positions(takes, words, joins_list_);
    for (std::size_t i = 0; i < taking; ++i) {
      const std::size_t pixel = first_pixel + joins_list_[i];
      join(run_at(pixel), root_of(run_at(pixel - width_)));
    }
    if (joined_back_) unite(first_run, first_run - 1);
    for (std::size_t i = 0; i < words; ++i) masks.above[i] |= starts_[first + i];
    keep_first_bits(masks.up, masks.above, words, pairs);
    for (std::size_t i = 0; i < words; ++i) pairs[i] &= ~takes[i];
    const std::size_t uniting = list_positions(pairs, words, joins_list_);
    for (std::size_t i = 0; i < uniting; ++i) {
      const std::size_t pixel = first_pixel + joins_list_[i];
      unite(run_at(pixel), run_at(pixel - width_));
    }
    return true;
  }

  /// Counts the one-way links of a batch. @return whether there may be room for all
  bool note_one_way(std::size_t batch, const Masks& masks) {
    std::size_t links = 0;
    for (std::size_t i = 0; i < words_in(batch); ++i) {
      for (const std::uint64_t bits :
           {masks.to_left[i], masks.from_left[i], masks.to_up[i], masks.from_up[i]}) {
        links += static_cast<std::size_t>(__builtin_popcountll(bits));
      }
    }
    batch_has_one_way_[batch] = links != 0;
    one_way_ += links;
    // Better soon than late: whether it fits if it goes on like this, judged after a sixteenth of the
    // image.
    const std::size_t need =
        first_run_[batch + 1] * 2 * sizeof(std::int32_t) + (one_way_ + 1) * sizeof(OneWayLink);
    const std::size_t part = batch + 1 < batches_ / 16 ? batches_ / 16 : batch + 1;
    return one_way_ == 0 || need * batches_ <= room_ * sizeof(std::int32_t) * part;
  }

  /// Lists where the runs of a batch start, and its end. @return the number of runs
  std::size_t list_starts(std::size_t batch) {
    const std::size_t listed = list_positions(starts_ + first_word(batch), words_in(batch), starts_list_);
    starts_list_[listed] = static_cast<std::uint16_t>(pixels_in(batch));
    return listed;
  }

  // Runs form disjoint sets as trees. A run's node is its parent, an earlier run, or, in the root, the
  // negative number of the set's pixels. Numbers beyond the limit are not added up any further.

  /// Puts the set of the root `child` into that of the root `root`, which is earlier.
  void join(std::uint32_t child, std::uint32_t root) {
    const std::int32_t size = nodes_[root];
    const std::int32_t more = nodes_[child];
    nodes_[child] = static_cast<std::int32_t>(root);
    nodes_[choose(size >= -limit_, static_cast<std::int32_t>(root), -1)] = size + more;
  }

  void unite(std::uint32_t a, std::uint32_t b) {
    a = root_of(a);
    b = root_of(b);
    if (a == b) return;
    const std::uint32_t change = (a ^ b) & (0u - static_cast<std::uint32_t>(a > b));
    join(b ^ change, a ^ change);
  }

  std::uint32_t root_of(std::uint32_t run) {
    const std::int32_t node = nodes_[run];
    const auto self = static_cast<std::int32_t>(run);
    const std::int32_t parent = choose(node < 0, self, node);
    if (nodes_[parent] < 0) [[likely]]
      return static_cast<std::uint32_t>(parent);
    return find_root(run);
  }

  std::uint32_t find_root(std::uint32_t run) {
    for (std::int32_t parent = nodes_[run]; parent >= 0; parent = nodes_[run]) {
      const std::int32_t grandparent = nodes_[parent];
      if (grandparent < 0) return static_cast<std::uint32_t>(parent);
      nodes_[run] = grandparent;
      run = static_cast<std::uint32_t>(grandparent);
    }
    return run;
  }

  /// Gives every set of runs to the first set from which one-way links lead to it.
  void follow_one_way_links() {
    const std::uint32_t count = first_run_[batches_];
    WorkSpace rest(reinterpret_cast<unsigned char*>(nodes_ + count),
                   (room_ - count) * sizeof(std::int32_t));
    std::uint32_t* const last = rest.take<std::uint32_t>(count);  // of a set's ring; 0: none
    OneWayLink* const links = rest.take<OneWayLink>(one_way_ + 1);
    for (std::uint32_t run = 0; run < count; ++run) last[run] = 0;
    std::uint32_t used = 0;
    for (std::size_t batch = 0; batch < batches_; ++batch) {
      if (!batch_has_one_way_[batch]) continue;
      for_one_way_links(batch, [&](std::uint32_t from_run, std::uint32_t to_run) {
        const std::uint32_t from = root_of(from_run);
        const std::uint32_t to = root_of(to_run);
        if (from == to) return;
        const std::uint32_t before = last[from];
        last[from] = ++used;
        links[used] = {to, before == 0 ? used : links[before].next};
        if (before != 0) links[before].next = used;
      });
    }

    for (std::uint32_t set = 0; set < count; ++set) {
      if (last[set] == 0 || nodes_[set] >= 0) continue;
      std::uint32_t end = last[set];
      for (std::uint32_t link = links[end].next;; link = links[link].next) {
        const std::uint32_t to = links[link].to;
        if (to > set && nodes_[to] < 0) {
          nodes_[set] += nodes_[to];
          nodes_[to] = static_cast<std::int32_t>(set);
          if (last[to] != 0) {  // the taken set's links come next
            const std::uint32_t first = links[last[to]].next;
            links[last[to]].next = links[link].next;
            links[link].next = first;
            if (link == end) end = last[to];
          }
        }
        if (link == end) break;
      }
    }
  }

  /// Calls `add(from run, to run)` for the one-way links of a batch, once for those between two runs of
  /// which one lies above the other.
  template <typename Add>
  void for_one_way_links(std::size_t batch, Add add) {
    Masks masks;
    scan(batch, masks);
    const std::size_t words = words_in(batch);
    for (std::size_t i = 0; i < words; ++i) masks.above[i] |= starts_[first_word(batch) + i];
    std::uint64_t to_up[kBatchWords], from_up[kBatchWords];
    keep_first_bits(masks.to_up, masks.above, words, to_up);
    keep_first_bits(masks.from_up, masks.above, words, from_up);
    for (std::size_t i = 0; i < words; ++i) {
      const auto each = [&](std::uint64_t bits, std::size_t back, bool forth) {
        for (; bits != 0; bits &= bits - 1) {
          const std::size_t pixel =
              (first_word(batch) + i) * kWordBits + static_cast<std::size_t>(__builtin_ctzll(bits));
          const std::uint32_t here = run_at(pixel);
          const std::uint32_t there = run_at(pixel - back);
          add(forth ? here : there, forth ? there : here);
        }
      };
      each(masks.to_left[i], 1, true);
      each(masks.from_left[i], 1, false);
      each(to_up[i], width_, true);
      each(from_up[i], width_, false);
    }
  }

  PixelWords words_;
  Threshold threshold_;
  const std::uint16_t* pixels_;
  std::size_t width_;
  std::size_t count_;
  std::uint16_t invalid_;
  std::int32_t limit_ = 0;
  bool joined_back_ = false;  // the first pixel of the batch to the one before

  // In the work space: words of bits for all pixels, with words for a row before the first, and the runs.
  std::uint64_t* valid_ = nullptr;
  std::uint64_t* starts_ = nullptr;
  std::uint64_t* right_ = nullptr;
  std::uint64_t* down_ = nullptr;
  std::uint32_t* before_ = nullptr;     // runs that start before the word
  std::uint32_t* first_run_ = nullptr;  // by batch
  bool* batch_has_one_way_ = nullptr;
  std::int32_t* nodes_ = nullptr;  // by run
  std::size_t room_ = 0;
  std::size_t batches_ = 0;
  std::size_t one_way_ = 0;

  std::uint16_t starts_list_[kBatch + kListSlack];
  std::uint16_t joins_list_[kBatch + kListSlack];
};

}  // namespace
}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL

#endif
