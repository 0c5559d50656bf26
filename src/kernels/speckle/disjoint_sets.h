/// Sets of runs as a union-find forest.
#ifndef FILTERPROCESSOR_KERNELS_SPECKLE_DISJOINT_SETS_H
#define FILTERPROCESSOR_KERNELS_SPECKLE_DISJOINT_SETS_H

#include "kernels/speckle/work_space.h"

namespace filterprocessor {
namespace {

/// `yes` or `no`, never by a branch: which one is hard to foresee.
inline std::int32_t choose(bool condition, std::int32_t yes, std::int32_t no) {
  const std::int32_t mask = -static_cast<std::int32_t>(condition);
  return (yes & mask) | (no & ~mask);
}

/// Disjoint sets of runs, each with its number of pixels. A run's node is its parent, an earlier run, or, in
/// a root, the negative size of the set. Sizes beyond a limit are not added up any further.
class DisjointSets {
 public:
  static constexpr std::int32_t kNeverRemoved = -2147483647;  // a root larger than every limit

  /// Takes what is left of the work space. @return whether that is enough for any run
  bool take_space(WorkSpace& work, std::int32_t limit) {
    smallest_ = -limit;
    room_ = work.room<std::int32_t>();
    nodes_ = work.take<std::int32_t>(room_);
    if (nodes_ == nullptr || room_ == 0) return false;
    ++nodes_;  // the one before the first is where attach() puts what is not wanted
    --room_;
    return true;
  }

  /// The number of runs that there is room for.
  std::size_t room() const { return room_; }
  /// The room behind the nodes of the first `count` runs.
  WorkSpace behind(std::uint32_t count) const {
    return WorkSpace(reinterpret_cast<unsigned char*>(nodes_ + count),
                     (room_ - count) * sizeof(std::int32_t));
  }

  std::int32_t& operator[](std::uint32_t run) { return nodes_[run]; }
  bool is_root(std::uint32_t run) const { return nodes_[run] < 0; }

  /// The root of a run's set.
  std::uint32_t find(std::uint32_t run) {
    const std::uint32_t above = parent(run);
    if (is_root(above)) [[likely]]
      return above;
    return find_far(above);
  }

  void unite(std::uint32_t a, std::uint32_t b) {
    if (parent(a) == parent(b)) return;
    a = find(a);
    b = find(b);
    if (a == b) return;
    const std::uint32_t change = (a ^ b) & (0u - static_cast<std::uint32_t>(a > b));
    attach(b ^ change, a ^ change);
  }

  /// Puts the set of a root into that of an earlier root.
  void attach(std::uint32_t child, std::uint32_t root) {
    const std::int32_t size = nodes_[root];
    const std::int32_t more = nodes_[child];
    nodes_[child] = static_cast<std::int32_t>(root);
    nodes_[choose(size >= smallest_, static_cast<std::int32_t>(root), -1)] = size + more;
  }

  /// Replaces a run's node by that of its root; all earlier runs' have been replaced.
  /// @return the new node
  std::int32_t settle(std::uint32_t run) { return nodes_[run] = nodes_[parent(run)]; }

 private:
  /// The parent, or a root itself: as unsigned numbers negative sizes are larger than all runs.
  std::uint32_t parent(std::uint32_t run) const {
    const auto node = static_cast<std::uint32_t>(nodes_[run]);
    return node < run ? node : run;
  }

  std::uint32_t find_far(std::uint32_t run) {
    for (std::int32_t above = nodes_[run]; above >= 0; above = nodes_[run]) {
      const std::int32_t further = nodes_[above];
      if (further < 0) return static_cast<std::uint32_t>(above);
      nodes_[run] = further;
      run = static_cast<std::uint32_t>(further);
    }
    return run;
  }

  std::int32_t* nodes_ = nullptr;
  std::size_t room_ = 0;
  std::int32_t smallest_ = 0;
};

}  // namespace
}  // namespace filterprocessor

#endif
