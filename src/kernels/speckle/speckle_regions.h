/// Regions of an image as connected components of runs.
#ifndef FILTERPROCESSOR_KERNELS_SPECKLE_SPECKLE_REGIONS_H
#define FILTERPROCESSOR_KERNELS_SPECKLE_SPECKLE_REGIONS_H

#include <initializer_list>

#include "kernels/speckle/directed_edges.h"
#include "kernels/speckle/disjoint_sets.h"
#include "kernels/speckle/speckle_runs.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {
namespace {

/// Labels the regions of an image of `width` x `height` pixels without gaps between rows, taken as one
/// sequence.
///
/// A region is what can be reached from its first pixel over pixels of no earlier region. With one
/// threshold for all, links have no direction and regions are connected components: runs of pixels linked
/// to their left, united where they touch. Thresholds by value make some links lead one way only. Pixels with
/// links both ways between them always end up in one region, that of the first pixel that reaches any of
/// them; so components are made of links both ways, and the others become directed edges between components.
///
/// Every pixel is in a run; those of invalid pixels are never united. Runs also end with a row and with a
/// batch of kBatch pixels.
template <typename Threshold>
class Regions {
 public:
  Regions(const std::uint16_t* pixels, std::size_t width, std::size_t height, std::uint16_t invalid,
          const Threshold& threshold)
      : runs_(pixels, width, height, invalid, threshold), width_(width) {}

  /// Labels all regions. `limit` is the largest that anyone asks for; `prepare(batch)` is called before
  /// the pixels of a batch and the row below it are read.
  /// @return false if the work space is too small, and then nothing has been labelled. Of 9 bytes a pixel,
  ///         bit masks take 0.3 (with a table 0.6), lists of starts 2 where they are kept, each run 4 and
  ///         with directed edges 8, each edge 8: enough for a run a pixel in all but the smallest images,
  ///         but not for an edge at every third pixel besides.
  template <typename Prepare>
  bool label(std::int32_t limit, WorkSpace work, Prepare prepare) {
    if (!take_space(work, limit)) return false;
    for (std::size_t batch = 0; batch < runs_.batches(); ++batch) {
      prepare(batch);
      if (!add_batch(batch)) return false;
    }
    if (edges_ != 0) follow_edges();
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
  static constexpr std::size_t kListSlack = 64;  // what write_positions() may write past its result

  bool take_space(WorkSpace& work, std::int32_t limit) {
    if (!runs_.take_space(work)) return false;
    if constexpr (!Threshold::symmetric) batch_has_edges_ = work.take<bool>(runs_.batches());
    // Lists of starts are made once, not twice, if what they take leaves enough for a run a pixel, with a
    // table also for an edge at each.
    constexpr std::size_t needed = Threshold::symmetric ? 4 : 16;
    WorkSpace rest = work;
    auto* const starts = rest.take<std::uint16_t>(runs_.pixels() + runs_.batches() + kListSlack);
    if (rest.room<unsigned char>() > needed * (runs_.pixels() + 1)) {
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
      if (!count_edges(batch, masks)) return false;
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
    // A run takes the component of the first run above that it touches; only what it touches besides
    // unites components.
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

  /// Counts the links of a batch that lead one way only. @return whether there may be room for all
  bool count_edges(std::size_t batch, const BatchMasks& masks) {
    std::size_t links = 0;
    for (std::size_t i = 0; i < runs_.words_in(batch); ++i) {
      for (const std::uint64_t bits :
           {masks.to_left[i], masks.from_left[i], masks.to_up[i], masks.from_up[i]}) {
        links += static_cast<std::size_t>(__builtin_popcountll(bits));
      }
    }
    batch_has_edges_[batch] = links != 0;
    edges_ += links;
    // Better soon than late: whether it fits if it goes on like this, judged after a sixteenth of the
    // image.
    const std::size_t need = runs_.first_run(batch + 1) * 2 * sizeof(std::int32_t) +
                             (edges_ + 1) * sizeof(DirectedEdges::Edge);
    const std::size_t part = batch + 1 < runs_.batches() / 16 ? runs_.batches() / 16 : batch + 1;
    return edges_ == 0 || need * runs_.batches() <= sets_.room() * sizeof(std::int32_t) * part;
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

  void follow_edges() {
    const std::uint32_t count = runs_.count();
    DirectedEdges edges(sets_.behind(count), count, edges_);
    for (std::size_t batch = 0; batch < runs_.batches(); ++batch) {
      if (!batch_has_edges_[batch]) continue;
      for_one_way_links(batch, [&](std::uint32_t from_run, std::uint32_t to_run) {
        const std::uint32_t from = sets_.find(from_run);
        const std::uint32_t to = sets_.find(to_run);
        if (from != to) edges.add(from, to);
      });
    }
    edges.follow(sets_);
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
  bool* batch_has_edges_ = nullptr;
  std::size_t edges_ = 0;  // links that lead one way only
  DisjointSets sets_;
  std::uint16_t* kept_starts_ = nullptr;  // of all batches, each with its end

  std::uint16_t starts_list_[kBatch + kListSlack];
  std::uint16_t joins_list_[kBatch + kListSlack];
};

}  // namespace
}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL

#endif
