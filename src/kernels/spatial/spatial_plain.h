#ifndef FILTERPROCESSOR_KERNELS_SPATIAL_SPATIAL_PLAIN_H
#define FILTERPROCESSOR_KERNELS_SPATIAL_SPATIAL_PLAIN_H

#include "kernels/spatial/spatial.h"

namespace filterprocessor::plain {

SpatialKernels::Filter spatial_horizontal, spatial_vertical, spatial_both;

inline constexpr SpatialKernels spatial = {spatial_horizontal, spatial_vertical, spatial_both};

}  // namespace filterprocessor::plain

#endif
