/// Edges between sets of runs that lead one way only.
#ifndef FILTERPROCESSOR_KERNELS_SPECKLE_DIRECTED_EDGES_H
#define FILTERPROCESSOR_KERNELS_SPECKLE_DIRECTED_EDGES_H

#include "kernels/speckle/disjoint_sets.h"

namespace filterprocessor {
namespace {

/// Directed edges between the sets of a forest, in a ring for each root that edges leave.
class DirectedEdges {
 public:
  struct Edge {
    std::uint32_t target;
    std::uint32_t next;  // in the ring
  };

  /// For a forest of `runs` runs and up to `edges` edges, which `work` has room for.
  DirectedEdges(WorkSpace work, std::uint32_t runs, std::size_t edges)
      : last_(work.take<std::uint32_t>(runs)), edges_(work.take<Edge>(edges + 1)), runs_(runs) {
    for (std::uint32_t run = 0; run < runs; ++run) last_[run] = kNone;
  }

  void add(std::uint32_t root, std::uint32_t target) {
    const std::uint32_t before = last_[root];
    last_[root] = ++used_;
    edges_[used_] = {target, before == kNone ? used_ : edges_[before].next};
    if (before != kNone) edges_[before].next = used_;
  }

  /// Gives every set to the first from which edges lead to it, directly or over sets that it was given.
  void follow(DisjointSets& sets) {
    for (std::uint32_t root = 0; root < runs_; ++root) {
      if (last_[root] == kNone || !sets.is_root(root)) continue;
      std::uint32_t end = last_[root];
      for (std::uint32_t edge = edges_[end].next;; edge = edges_[edge].next) {
        const std::uint32_t target = edges_[edge].target;
        if (target > root && sets.is_root(target)) {
          sets.attach(target, root);
          if (last_[target] != kNone) {  // its edges come next
            const std::uint32_t first = edges_[last_[target]].next;
            edges_[last_[target]].next = edges_[edge].next;
            edges_[edge].next = first;
            if (edge == end) end = last_[target];
          }
        }
        if (edge == end) break;
      }
    }
  }

 private:
  static constexpr std::uint32_t kNone = 0;

  std::uint32_t* last_;  // of a root's ring
  Edge* edges_;
  std::uint32_t runs_;
  std::uint32_t used_ = 0;
};

}  // namespace
}  // namespace filterprocessor

#endif
