#ifndef FILTERPROCESSOR_KERNELS_CORRECTION_CORRECTION_H
#define FILTERPROCESSOR_KERNELS_CORRECTION_CORRECTION_H

#include <cstddef>
#include <cstdint>

#include "common/saturate.h"

namespace filterprocessor {

/// Clearing of one depth at one level, in place on `count` pixels.
struct CorrectionKernels {
  /// Sets every pixel p to 0 for which trunc(scale p), in 32-bit float, is `depth`.
  void (*clear_depth)(std::uint16_t* pixels, std::size_t count, float scale, std::int32_t depth);
};

/// The pixel values whose depth is the given one: first to first + span, or none.
struct PixelRange {
  bool empty;
  std::uint16_t first;
  std::uint16_t span;
};

/// trunc(scale p) never changes direction as p grows, so the values are one stretch, found by bisection.
PixelRange pixels_of_depth(float scale, std::int32_t depth);

namespace plain {

inline std::int32_t depth_of(std::uint16_t pixel, float scale) {
  return saturate<std::int32_t>(scale * static_cast<float>(pixel));
}

extern const CorrectionKernels correction;

}  // namespace plain

}  // namespace filterprocessor

#endif
