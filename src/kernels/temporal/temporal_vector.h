#ifndef FILTERPROCESSOR_KERNELS_TEMPORAL_TEMPORAL_VECTOR_H
#define FILTERPROCESSOR_KERNELS_TEMPORAL_TEMPORAL_VECTOR_H

#include "kernels/simd/simd.h"
#include "kernels/temporal/temporal.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

TemporalKernels::Smooth smooth_temporal;

inline constexpr TemporalKernels temporal = {smooth_temporal};

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL

#endif
