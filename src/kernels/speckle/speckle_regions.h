/// Regions of an image as sets of runs.
#ifndef FILTERPROCESSOR_KERNELS_SPECKLE_SPECKLE_REGIONS_H
#define FILTERPROCESSOR_KERNELS_SPECKLE_SPECKLE_REGIONS_H

#include "kernels/speckle/speckle_links.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {
namespace {

/// Disjoint sets of runs. A run's node is its parent in the tree of its set, always an earlier run, or,
/// in the root, the negative number of the set's pixels. Numbers beyond `limit` are not added up any
/// further.
class RunSets {
 public:
  struct Run {
    std::int32_t node;
    std::uint16_t start;  // in the batch
    std::uint16_t length;
  };

  RunSets() = default;
  RunSets(Run* runs, std::int32_t limit) : runs_(runs), limit_(limit) {}

  Run& operator[](std::size_t run) { return runs_[run]; }

  void unite(std::uint32_t a, std::uint32_t b) {
    std::int32_t node_a = runs_[a].node;
    std::int32_t node_b = runs_[b].node;
    a = node_a < 0 ? a : static_cast<std::uint32_t>(node_a);
    b = node_b < 0 ? b : static_cast<std::uint32_t>(node_b);
    node_a = runs_[a].node;
    node_b = runs_[b].node;
    if ((node_a & node_b) >= 0) [[unlikely]] {
      a = find(a);
      b = find(b);
      node_a = runs_[a].node;
      node_b = runs_[b].node;
    }
    // No branch on which is the earlier or whether they are one: what must not change is written
    // elsewhere.
    std::int32_t elsewhere;
    const std::uint32_t first = a < b ? a : b;
    const std::uint32_t second = a < b ? b : a;
    const std::int32_t first_node = a < b ? node_a : node_b;
    *(a != b ? &runs_[second].node : &elsewhere) = static_cast<std::int32_t>(first);
    *(a != b && first_node >= -limit_ ? &runs_[first].node : &elsewhere) = node_a + node_b;
  }

  std::uint32_t find(std::uint32_t run) {
    std::int32_t parent = runs_[run].node;
    while (parent >= 0) {
      const std::int32_t grandparent = runs_[parent].node;
      if (grandparent < 0) return static_cast<std::uint32_t>(parent);
      runs_[run].node = grandparent;
      run = static_cast<std::uint32_t>(grandparent);
      parent = runs_[run].node;
    }
    return run;
  }

 private:
  Run* runs_ = nullptr;
  std::int32_t limit_ = 0;
};

/// Where runs start in 64 pixels, and how many start before them.
struct StartWord {
  std::uint64_t starts;
  std::uint64_t before;
};

/// A link that leads one way only: from a set of runs to the set `to`. The links of one set form a ring.
struct OneWayLink {
  std::uint32_t to;
  std::uint32_t next;
};

/// A work space that is given out from its start.
class WorkSpace {
 public:
  WorkSpace(unsigned char* bytes, std::size_t size) : next_(bytes), left_(size) {}

  /// Room for `count` values of T, or null.
  template <typename T>
  T* take(std::size_t count) {
    const std::size_t gap =
        (alignof(T) - reinterpret_cast<std::uintptr_t>(next_) % alignof(T)) % alignof(T);
    if (left_ < gap || (left_ - gap) / sizeof(T) < count) return nullptr;
    T* const result = reinterpret_cast<T*>(next_ + gap);
    next_ += gap + count * sizeof(T);
    left_ -= gap + count * sizeof(T);
    return result;
  }
  /// How many values of T, of at least a byte's alignment gap, are left.
  template <typename T>
  std::size_t room() const {
    return left_ < alignof(T) ? 0 : (left_ - alignof(T)) / sizeof(T);
  }

 private:
  unsigned char* next_;
  std::size_t left_;
};

/// Finds the regions of an image of `width` x `height` pixels without gaps between rows, seen as one
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
  using Run = RunSets::Run;
  static constexpr std::size_t kBatchWords = 64;
  static constexpr std::size_t kBatch = kBatchWords * kWordBits;

  Regions(const std::uint16_t* pixels, std::size_t width, std::size_t height, std::uint16_t invalid,
          const Threshold& threshold, WorkSpace work)
      : words_(pixels, width, width * height, invalid),
        threshold_(threshold),
        width_(width),
        count_(width * height),
        work_(work) {}

  /// Finds all regions. `limit` is the largest that anyone asks for; `prepare(n)` is called before the
  /// first n pixels are read.
  /// @return false if the work space is too small. It holds one run a pixel, but not also a one-way link
  /// for
  ///         every fourth (12 bytes a run, 8 a link, 0.25 to 0.4 a pixel); then nothing has been found.
  template <typename Prepare>
  bool find(std::int32_t limit, Prepare prepare) {
    const std::size_t count = (count_ + kWordBits - 1) / kWordBits;
    const std::size_t lead = width_ / kWordBits + 2;
    batches_ = (count_ + kBatch - 1) / kBatch;
    starts_ = work_.take<StartWord>(count + lead);
    down_ = Threshold::symmetric ? nullptr : work_.take<std::uint64_t>(count + lead);
    batch_ = work_.take<Batch>(batches_ + 1);
    if (starts_ == nullptr || batch_ == nullptr || (!Threshold::symmetric && down_ == nullptr))
      return false;
    for (std::size_t i = 0; i < lead; ++i) {
      starts_[i] = {0, 0};
      if constexpr (!Threshold::symmetric) down_[i] = 0;
    }
    starts_ += lead;
    if constexpr (!Threshold::symmetric) down_ += lead;
    room_ = work_.room<Run>();
    sets_ = RunSets(work_.take<Run>(room_), limit);

    for (std::size_t batch = 0; batch < batches_; ++batch) {
      prepare(batch);
      if (!add_batch(batch)) return false;
    }
    return Threshold::symmetric || links_ == 0 || follow_one_way_links();
  }

  /// Calls `visit(first pixel, number of pixels)` for the runs of all regions whose first pixel and size
  /// `is_removed` says to remove, in ascending order.
  template <typename IsRemoved, typename Visit>
  void visit_removed(IsRemoved is_removed, Visit visit) {
    for (std::size_t batch = 0; batch < batches_; ++batch) {
      const std::size_t first_pixel = batch * kBatch;
      const std::size_t first_run = batch_[batch].first_run;
      const std::size_t end = batch_[batch + 1].first_run;
      std::size_t count = 0;
      for (std::size_t run = first_run; run < end; ++run) {
        // A parent comes before its children, so its node already is its verdict.
        Run& at = sets_[run];
        const bool verdict = at.node < 0 ? is_removed(first_pixel + at.start, -at.node)
                                         : sets_[static_cast<std::size_t>(at.node)].node != 0;
        at.node = verdict;
        list_[count] = static_cast<std::uint16_t>(run - first_run);
        count += verdict;
      }
      for (std::size_t i = 0; i < count; ++i) {
        const Run& removed = sets_[first_run + list_[i]];
        visit(first_pixel + removed.start, std::size_t{removed.length});
      }
    }
  }

 private:
  static constexpr std::size_t kSlack = 64;  // what write_positions() may write beyond its result

  struct Batch {
    std::uint32_t first_run;
    std::uint32_t one_way;
  };

  struct Joins {
    std::uint64_t starts;                              // pixels that begin a run
    std::uint64_t up;                                  // joined to the pixel above, both ways
    std::uint64_t to_left, from_left, to_up, from_up;  // links that lead one way only
    std::uint64_t one_way() const { return to_left | from_left | to_up | from_up; }
  };

  /// Reads words in order.
  class Reader {
   public:
    Reader(const Regions& regions, std::size_t word)
        : regions_(regions),
          next_row_((word * kWordBits + regions.width_ - 1) / regions.width_ * regions.width_) {}

    Joins read(std::size_t word) {
      const std::size_t first = word * kWordBits;
      const std::uint64_t row_starts = take_row_starts(first);
      const LinkBits link = regions_.words_.links(first, regions_.threshold_);
      const std::uint64_t left_valid = link.valid << 1 | valid_;
      valid_ = link.valid >> 63;
      const std::uint64_t both = link.valid & left_valid & ~row_starts;
      const std::uint64_t ends = link.valid | left_valid | row_starts;
      if constexpr (Threshold::symmetric) {
        return {ends & ~(link.left & both), link.up, 0, 0, 0, 0};
      } else {
        const std::uint64_t back = link.right << 1 | right_;
        right_ = link.right >> 63;
        regions_.down_[word] = link.down & link.valid;
        const std::uint64_t down = regions_.above(regions_.down_, first) & link.valid;
        return {ends & ~(link.left & back & both), link.up & down,  link.left & ~back & both,
                back & ~link.left & both,          link.up & ~down, down & ~link.up};
      }
    }

   private:
    std::uint64_t take_row_starts(std::size_t first) {
      std::uint64_t starts = 0;
      const auto take = [&](bool here) {
        starts |= std::uint64_t{here} << ((next_row_ - first) & 63);
        next_row_ += here ? regions_.width_ : 0;
      };
      take(next_row_ < first + kWordBits);
      while (next_row_ < first + kWordBits) take(true);  // rows of fewer than 64 pixels only
      return starts;
    }

    const Regions& regions_;
    std::size_t next_row_;
    std::uint64_t valid_ = 0;
    std::uint64_t right_ = 0;
  };

  /// Keeps the first bit of each stretch that starts with a bit of `starts`. A sum carries through a
  /// stretch from its first bit on, so that a bit is the first exactly when nothing is carried into it.
  class FirstBits {
   public:
    std::uint64_t operator()(std::uint64_t bits, std::uint64_t starts) {
      const std::uint64_t sum = bits + (bits | ~starts);
      const std::uint64_t carried = sum + carry_;
      carry_ = static_cast<std::uint64_t>(sum < bits) | static_cast<std::uint64_t>(carried < sum);
      return bits & (starts | ~carried);
    }

   private:
    std::uint64_t carry_ = 0;
  };

  /// The bits of the pixels above the 64 from `first` on.
  std::uint64_t above(const std::uint64_t* bits, std::size_t first) const {
    return above_of(first, [bits](std::ptrdiff_t word) { return bits[word]; });
  }
  template <typename Word>
  std::uint64_t above_of(std::size_t first, Word word) const {
    const auto at = static_cast<std::ptrdiff_t>(first) - static_cast<std::ptrdiff_t>(width_);
    return word(at >> 6) >> (at & 63) | word((at >> 6) + 1) << 1 << (~at & 63);
  }
  std::uint64_t starts_above(std::size_t first) const {
    return above_of(first, [this](std::ptrdiff_t word) { return starts_[word].starts; });
  }

  /// The run of a pixel.
  std::uint32_t run_at(std::size_t pixel) const {
    const StartWord& word = starts_[pixel / kWordBits];
    const int here = __builtin_popcountll(word.starts << (~pixel & 63));
    return static_cast<std::uint32_t>(word.before) + static_cast<std::uint32_t>(here) - 1;
  }

  bool add_batch(std::size_t batch) {
    const std::size_t first_word = batch * kBatchWords;
    const std::size_t first_pixel = batch * kBatch;
    const std::size_t length = count_ - first_pixel < kBatch ? count_ - first_pixel : kBatch;
    const std::size_t first_run = run_count_;
    const std::size_t end_word = first_word + (length + kWordBits - 1) / kWordBits;

    std::uint64_t firsts[kBatchWords];
    std::uint64_t one_way = 0;
    bool joined_back = false;
    FirstBits first_bits;
    for (std::size_t word = first_word; word < end_word; ++word) {
      Joins joins = reader_.read(word);
      if (word == first_word) {
        joined_back = (joins.starts & 1) == 0;
        joins.starts |= 1;
      }
      if (word + 1 == end_word) joins.starts &= ~std::uint64_t{0} >> ((kBatch - length) & 63);
      starts_[word] = {joins.starts, run_count_};
      run_count_ += static_cast<std::size_t>(__builtin_popcountll(joins.starts));
      firsts[word - first_word] = first_bits(joins.up, joins.starts | starts_above(word * kWordBits));
      if constexpr (!Threshold::symmetric) {
        one_way |= joins.one_way();
        links_ += static_cast<std::size_t>(__builtin_popcountll(joins.one_way()));
      }
    }
    batch_[batch] = {static_cast<std::uint32_t>(first_run), one_way != 0};
    batch_[batch + 1].first_run = static_cast<std::uint32_t>(run_count_);
    if (run_count_ > room_) return false;
    if (links_ != 0 && 12 * run_count_ + 8 * links_ + 24 > sizeof(Run) * room_) return false;

    std::size_t listed = 0;
    std::size_t joins = 0;
    for (std::size_t word = first_word; word < end_word; ++word) {
      const auto base = static_cast<std::uint16_t>((word - first_word) * kWordBits);
      listed += write_positions(starts_[word].starts, base, list_ + listed);
      joins += write_positions(firsts[word - first_word], base, joins_ + joins);
    }
    list_[listed] = static_cast<std::uint16_t>(length);
    for (std::size_t i = 0; i < listed; ++i) {
      const auto run_length = static_cast<std::uint16_t>(list_[i + 1] - list_[i]);
      sets_[first_run + i] = {-std::int32_t{run_length}, list_[i], run_length};
    }
    if (joined_back && first_pixel != 0) {
      sets_.unite(static_cast<std::uint32_t>(first_run), static_cast<std::uint32_t>(first_run - 1));
    }
    for (std::size_t i = 0; i < joins; ++i) {
      const std::size_t pixel = first_pixel + joins_[i];
      sets_.unite(run_at(pixel), run_at(pixel - width_));
    }
    return true;
  }

  PixelWords words_;
  Threshold threshold_;
  std::size_t width_;
  std::size_t count_;
  WorkSpace work_;
  Reader reader_{*this, 0};

  std::size_t batches_ = 0;
  Batch* batch_ = nullptr;
  StartWord* starts_ = nullptr;
  std::uint64_t* down_ = nullptr;  // links from pixels to those below
  std::size_t room_ = 0;
  std::size_t run_count_ = 0;
  std::size_t links_ = 0;  // one-way links, at most
  RunSets sets_;
  std::uint16_t list_[kBatch + kSlack];
  std::uint16_t joins_[kBatch + kSlack];

  /// Gives every set of runs to the first set from which one-way links lead to it.
  bool follow_one_way_links() {
    WorkSpace rest(reinterpret_cast<unsigned char*>(&sets_[run_count_]),
                   (room_ - run_count_) * sizeof(Run));
    std::uint32_t* const last = rest.take<std::uint32_t>(run_count_);  // of the links from a set; 0: none
    if (last == nullptr) return false;
    const std::size_t room = rest.room<OneWayLink>();
    OneWayLink* const links = rest.take<OneWayLink>(room);
    for (std::size_t run = 0; run < run_count_; ++run) last[run] = 0;

    std::uint32_t used = 1;
    const auto add = [&](std::uint32_t from, std::uint32_t to) {
      from = sets_.find(from);
      to = sets_.find(to);
      if (from == to) return true;
      if (used >= room) return false;
      const std::uint32_t before = last[from];
      links[used] = {to, before == 0 ? used : links[before].next};
      if (before != 0) links[before].next = used;
      last[from] = used++;
      return true;
    };
    for (std::size_t batch = 0; batch < batches_; ++batch) {
      if (batch_[batch].one_way != 0 && !for_one_way_links(batch, add)) return false;
    }

    for (std::uint32_t set = 0; set < run_count_; ++set) {
      if (sets_[set].node >= 0 || last[set] == 0) continue;
      std::uint32_t end = last[set];
      for (std::uint32_t link = links[end].next;; link = links[link].next) {
        const std::uint32_t to = links[link].to;
        if (to > set && sets_[to].node < 0) {
          sets_[set].node += sets_[to].node;
          sets_[to].node = static_cast<std::int32_t>(set);
          if (last[to] != 0) {  // its links are followed next
            const std::uint32_t first = links[last[to]].next;
            links[last[to]].next = links[link].next;
            links[link].next = first;
            if (link == end) end = last[to];
          }
        }
        if (link == end) break;
      }
    }
    return true;
  }

  /// Calls `add(from run, to run)` for the one-way links of a batch, once for each pair of rows of runs
  /// that touch, until it returns false.
  template <typename Add>
  bool for_one_way_links(std::size_t batch, Add add) {
    const std::size_t first_word = batch * kBatchWords;
    const std::size_t words = (count_ + kWordBits - 1) / kWordBits;
    const std::size_t end_word = words - first_word < kBatchWords ? words : first_word + kBatchWords;
    Reader reader(*this, first_word == 0 ? 0 : first_word - 1);
    if (first_word != 0) reader.read(first_word - 1);  // for what lies to the left
    FirstBits first_to_up, first_from_up;
    for (std::size_t word = first_word; word < end_word; ++word) {
      const std::size_t first = word * kWordBits;
      const Joins joins = reader.read(word);
      const std::uint64_t stretches = starts_[word].starts | starts_above(first);
      const auto each = [&](std::uint64_t bits, std::size_t back, bool forth) {
        for (; bits != 0; bits &= bits - 1) {
          const std::size_t pixel = first + static_cast<std::size_t>(__builtin_ctzll(bits));
          const std::uint32_t here = run_at(pixel);
          const std::uint32_t there = run_at(pixel - back);
          if (!(forth ? add(here, there) : add(there, here))) return false;
        }
        return true;
      };
      if (!each(joins.to_left, 1, true) || !each(joins.from_left, 1, false) ||
          !each(first_to_up(joins.to_up, stretches), width_, true) ||
          !each(first_from_up(joins.from_up, stretches), width_, false)) {
        return false;
      }
    }
    return true;
  }
};

}  // namespace
}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL

#endif
