/// Regions of an image as sets of runs.
#ifndef FILTERPROCESSOR_KERNELS_SPECKLE_SPECKLE_REGIONS_H
#define FILTERPROCESSOR_KERNELS_SPECKLE_SPECKLE_REGIONS_H

#include <initializer_list>

#include "kernels/speckle/disjoint_sets.h"
#include "kernels/speckle/speckle_runs.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {
namespace {

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
  Regions(const std::uint16_t* pixels, std::size_t width, std::size_t height, std::uint16_t invalid,
          const Threshold& threshold)
      : runs_(pixels, width, height, invalid, threshold), width_(width) {}

  /// Finds all regions. `limit` is the largest that anyone asks for; `prepare(batch)` is called before
  /// the pixels of a batch and the row below it are read.
  /// @return false if the work space is too small, and then nothing has been found. Of 9 bytes a pixel,
  ///         bit masks take 0.3 (with a table 0.6), each run 8 and with one-way links 12, each such link
  ///         8: enough for a run a pixel in all but the smallest images, but not for a one-way link in
  ///         every third pixel besides.
  template <typename Prepare>
  bool find(std::int32_t limit, WorkSpace work, Prepare prepare) {
    if (!take_space(work, limit)) return false;
    for (std::size_t batch = 0; batch < runs_.batches(); ++batch) {
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
    for (std::size_t batch = 0; batch < runs_.batches(); ++batch) {
      const std::size_t first_pixel = batch * kBatch;
      const std::uint32_t first_run = runs_.first_run(batch);
      const std::uint32_t count = runs_.first_run(batch + 1) - first_run;
      const std::uint16_t* const starts =
          kept_starts_ != nullptr ? starts_list(batch) : list_starts(batch);
      DisjointSets sets = sets_;
      for (std::uint32_t i = 0; by_place && i < count; ++i) {
        std::int32_t& node = sets[first_run + i];
        if (node >= 0 || node == DisjointSets::kNeverRemoved) continue;
        node = is_removed(first_pixel + starts[i], -node) ? -1 : DisjointSets::kNeverRemoved;
      }
      const std::int32_t smallest = by_place ? -1 : -limit;
      std::size_t listed = 0;
      for (std::uint32_t i = 0; i < count; ++i) {
        joins_list_[listed] = static_cast<std::uint16_t>(i);
        listed += sets.settle(first_run + i) >= smallest;
      }
      for (std::size_t i = 0; i < listed;) {
        const std::size_t start = starts[joins_list_[i]];
        std::size_t end;
        do {
          end = starts[joins_list_[i] + 1u];
        } while (++i < listed && starts[joins_list_[i]] == end);
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

  static constexpr std::size_t kListSlack = 64;  // what write_positions() may write past its result

  bool take_space(WorkSpace& work, std::int32_t limit) {
    if (!runs_.take_space(work)) return false;
    if constexpr (!Threshold::symmetric) batch_has_one_way_ = work.take<bool>(runs_.batches());
    // Listing where runs start once, not twice, is worth 2 bytes a run if nothing else lacks them: nodes,
    // and links that lead one way.
    constexpr std::size_t others = Threshold::symmetric ? 4 : 16;
    WorkSpace rest = work;
    auto* const starts = rest.take<std::uint16_t>(runs_.pixels() + runs_.batches() + kListSlack);
    if (rest.room<unsigned char>() > others * (runs_.pixels() + 1)) {
      work = rest;
      kept_starts_ = starts;
    }
    return sets_.take_space(work, limit);
  }

  bool add_batch(std::size_t batch) {
    BatchMasks masks;
    runs_.scan(batch, masks);
    runs_.count_runs(batch);
    if (runs_.first_run(batch + 1) > sets_.room()) return false;
    if constexpr (!Threshold::symmetric) {
      if (!note_one_way(batch, masks)) return false;
    }

    const std::size_t words = runs_.words_in(batch);
    const std::size_t first_pixel = batch * kBatch;
    const std::uint32_t first_run = runs_.first_run(batch);
    const std::uint64_t* const start_bits = runs_.starts(batch);
    const std::uint16_t* const starts = list_starts(batch);
    const std::uint32_t count = runs_.first_run(batch + 1) - first_run;
    DisjointSets sets = sets_;  // a copy, whose members can stay in registers
    std::int32_t* const nodes = &sets[first_run];
    for (std::size_t i = 0; i < count; ++i) nodes[i] = starts[i] - starts[i + 1];
    std::uint64_t holes[kBatchWords];
    for (std::size_t i = 0; i < words; ++i) holes[i] = start_bits[i] & ~runs_.valid(batch)[i];
    const std::size_t invalid = list_positions(holes, words, joins_list_);
    for (std::size_t i = 0; i < invalid; ++i) {
      sets[runs_.at(first_pixel + joins_list_[i])] = DisjointSets::kNeverRemoved;
    }
    // A run takes the set of the first run above that it touches; only what it touches besides unites
    // sets.
    std::uint64_t takes[kBatchWords], pairs[kBatchWords];
    keep_first_bits(masks.up, start_bits, words, takes);
    const std::size_t taking = list_positions(takes, words, joins_list_);
    for (std::size_t i = 0; i < taking; ++i) {
      const std::size_t pixel = first_pixel + joins_list_[i];
      sets.attach(runs_.at(pixel), sets.find(runs_.at(pixel - width_)));
    }
    if (masks.joined_back) sets.unite(first_run, first_run - 1);
    for (std::size_t i = 0; i < words; ++i) masks.above[i] |= start_bits[i];
    keep_first_bits(masks.up, masks.above, words, pairs);
    for (std::size_t i = 0; i < words; ++i) pairs[i] &= ~takes[i];
    const std::size_t uniting = list_positions(pairs, words, joins_list_);
    for (std::size_t i = 0; i < uniting; ++i) {
      const std::size_t pixel = first_pixel + joins_list_[i];
      sets.unite(runs_.at(pixel), runs_.at(pixel - width_));
    }
    return true;
  }

  /// Counts the one-way links of a batch. @return whether there may be room for all
  bool note_one_way(std::size_t batch, const BatchMasks& masks) {
    std::size_t links = 0;
    for (std::size_t i = 0; i < runs_.words_in(batch); ++i) {
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
        runs_.first_run(batch + 1) * 2 * sizeof(std::int32_t) + (one_way_ + 1) * sizeof(OneWayLink);
    const std::size_t part = batch + 1 < runs_.batches() / 16 ? runs_.batches() / 16 : batch + 1;
    return one_way_ == 0 || need * runs_.batches() <= sets_.room() * sizeof(std::int32_t) * part;
  }

  /// Room for where the runs of a batch start, and its end.
  std::uint16_t* starts_list(std::size_t batch) {
    return kept_starts_ == nullptr ? starts_list_ : kept_starts_ + runs_.first_run(batch) + batch;
  }

  const std::uint16_t* list_starts(std::size_t batch) {
    std::uint16_t* const list = starts_list(batch);
    const std::size_t count = list_positions(runs_.starts(batch), runs_.words_in(batch), list);
    list[count] = static_cast<std::uint16_t>(runs_.pixels_in(batch));
    return list;
  }

  /// Gives every set of runs to the first set from which one-way links lead to it.
  void follow_one_way_links() {
    const std::uint32_t count = runs_.count();
    WorkSpace rest = sets_.behind(count);
    std::uint32_t* const last = rest.take<std::uint32_t>(count);  // of a set's ring; 0: none
    OneWayLink* const links = rest.take<OneWayLink>(one_way_ + 1);
    for (std::uint32_t run = 0; run < count; ++run) last[run] = 0;
    std::uint32_t used = 0;
    for (std::size_t batch = 0; batch < runs_.batches(); ++batch) {
      if (!batch_has_one_way_[batch]) continue;
      for_one_way_links(batch, [&](std::uint32_t from_run, std::uint32_t to_run) {
        const std::uint32_t from = sets_.find(from_run);
        const std::uint32_t to = sets_.find(to_run);
        if (from == to) return;
        const std::uint32_t before = last[from];
        last[from] = ++used;
        links[used] = {to, before == 0 ? used : links[before].next};
        if (before != 0) links[before].next = used;
      });
    }

    for (std::uint32_t set = 0; set < count; ++set) {
      if (last[set] == 0 || !sets_.is_root(set)) continue;
      std::uint32_t end = last[set];
      for (std::uint32_t link = links[end].next;; link = links[link].next) {
        const std::uint32_t to = links[link].to;
        if (to > set && sets_.is_root(to)) {
          sets_[set] += sets_[to];
          sets_[to] = static_cast<std::int32_t>(set);
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
    BatchMasks masks;
    runs_.scan(batch, masks);
    const std::size_t words = runs_.words_in(batch);
    for (std::size_t i = 0; i < words; ++i) masks.above[i] |= runs_.starts(batch)[i];
    std::uint64_t to_up[kBatchWords], from_up[kBatchWords];
    keep_first_bits(masks.to_up, masks.above, words, to_up);
    keep_first_bits(masks.from_up, masks.above, words, from_up);
    for (std::size_t i = 0; i < words; ++i) {
      const auto each = [&](std::uint64_t bits, std::size_t back, bool forth) {
        for (; bits != 0; bits &= bits - 1) {
          const std::size_t pixel =
              (batch * kBatchWords + i) * kWordBits + static_cast<std::size_t>(__builtin_ctzll(bits));
          const std::uint32_t here = runs_.at(pixel);
          const std::uint32_t there = runs_.at(pixel - back);
          add(forth ? here : there, forth ? there : here);
        }
      };
      each(masks.to_left[i], 1, true);
      each(masks.from_left[i], 1, false);
      each(to_up[i], width_, true);
      each(from_up[i], width_, false);
    }
  }

  Runs<Threshold> runs_;
  std::size_t width_;
  bool* batch_has_one_way_ = nullptr;
  std::size_t one_way_ = 0;  // links that lead one way only
  DisjointSets sets_;
  std::uint16_t* kept_starts_ = nullptr;  // of all batches, each with its end

  std::uint16_t starts_list_[kBatch + kListSlack];
  std::uint16_t joins_list_[kBatch + kListSlack];
};

}  // namespace
}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL

#endif
