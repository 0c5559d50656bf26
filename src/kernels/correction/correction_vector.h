#ifndef FILTERPROCESSOR_KERNELS_CORRECTION_CORRECTION_VECTOR_H
#define FILTERPROCESSOR_KERNELS_CORRECTION_CORRECTION_VECTOR_H

#include "kernels/correction/correction.h"
#include "kernels/simd/simd.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

void clear_depth(std::uint16_t* pixels, std::size_t count, float scale, std::int32_t depth);

inline constexpr CorrectionKernels correction = {clear_depth};

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL

#endif
