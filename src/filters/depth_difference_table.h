#ifndef FILTERPROCESSOR_FILTERS_DEPTH_DIFFERENCE_TABLE_H
#define FILTERPROCESSOR_FILTERS_DEPTH_DIFFERENCE_TABLE_H

#include <array>
#include <cstdint>

#include "framework/priv_filter.h"

namespace filterprocessor {

/// The largest difference between neighbours that belong together, by depth: a pixel value v selects the
/// entry (v >> shift) & 255, or the last one past the end.
struct DepthDifferenceTable {
  std::array<std::uint16_t, 7> entries = {};
  std::uint8_t shift = 0;

  /// Turns a difference in disparity codes into depth differences for frames like `info`. Depth is
  /// baseline times focal length over disparity, so a step of disparity is a step of depth that grows
  /// with the square of the distance; entry k is that step at a depth of 500 (k + 1).
  /// @return false when a depth frame's unit or geometry is 0 or below; nothing has changed then
  bool update(const IPrivFilter::FrameInfoInner& info, std::uint16_t difference);
};

/// A difference given for codes of `from_bits` fraction bits, for codes of `to_bits`: truncated, low 16
/// bits.
std::uint16_t rescale_difference(std::uint16_t difference, std::uint8_t from_bits, std::uint8_t to_bits);

}  // namespace filterprocessor

#endif
