#ifndef FILTERPROCESSOR_KERNELS_SPATIAL_SPATIAL_VECTOR_H
#define FILTERPROCESSOR_KERNELS_SPATIAL_SPATIAL_VECTOR_H

#include "kernels/simd/simd.h"
#include "kernels/spatial/spatial.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

SpatialKernels::Filter spatial_horizontal, spatial_vertical, spatial_both;

inline constexpr SpatialKernels spatial = {spatial_horizontal, spatial_vertical, spatial_both};

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL

#endif
