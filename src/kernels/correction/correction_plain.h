#ifndef FILTERPROCESSOR_KERNELS_CORRECTION_CORRECTION_PLAIN_H
#define FILTERPROCESSOR_KERNELS_CORRECTION_CORRECTION_PLAIN_H

#include "common/saturate.h"
#include "kernels/correction/correction.h"

namespace filterprocessor::plain {

inline std::int32_t depth_of(std::uint16_t pixel, float scale) {
  return saturate<std::int32_t>(scale * static_cast<float>(pixel));
}

void clear_depth(std::uint16_t* pixels, std::size_t count, float scale, std::int32_t depth);

inline constexpr CorrectionKernels correction = {clear_depth};

}  // namespace filterprocessor::plain

#endif
