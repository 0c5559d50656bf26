#ifndef FILTERPROCESSOR_KERNELS_MARGIN_MARGIN_H
#define FILTERPROCESSOR_KERNELS_MARGIN_MARGIN_H

#include <cstdint>

namespace filterprocessor {

/// Which runs are cleared; see filterprocessor/margin.h. Any values will do.
struct MarginRule {
  std::int32_t left = 0;      ///< margin of rows
  std::int32_t right = 0;     ///< margin of rows
  std::int32_t limit_x = 0;   ///< of rows
  std::int32_t margin_y = 0;  ///< of columns
  std::int32_t limit_y = 0;   ///< of columns
  /// Or left and right margins for each row, in place of `left` and `right`; runs then end with the band
  /// that `limit_x` sets.
  const std::uint16_t* chamfer = nullptr;
};

/// Margin clearing at one level.
struct MarginKernels {
  /// Works in place on `width` x `height` pixels, both at least 1.
  /// @return false when there is no memory for two numbers a column; nothing has changed then
  using Clear = bool(std::uint16_t* pixels, std::int32_t width, std::int32_t height,
                     const MarginRule& rule);

  Clear* clear;
};

namespace plain {
extern const MarginKernels margin;
}

}  // namespace filterprocessor

#endif
