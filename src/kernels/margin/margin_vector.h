#ifndef FILTERPROCESSOR_KERNELS_MARGIN_MARGIN_VECTOR_H
#define FILTERPROCESSOR_KERNELS_MARGIN_MARGIN_VECTOR_H

#include "kernels/margin/margin.h"
#include "kernels/simd/simd.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

MarginKernels::Clear clear_margins;

inline constexpr MarginKernels margin = {clear_margins};

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL

#endif
