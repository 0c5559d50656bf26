#ifndef FILTERPROCESSOR_KERNELS_SPECKLE_SPECKLE_VECTOR_H
#define FILTERPROCESSOR_KERNELS_SPECKLE_SPECKLE_VECTOR_H

#include "kernels/simd/simd.h"
#include "kernels/speckle/speckle.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

SpeckleKernels::Remove speckle_full, speckle_pyramid;
SpeckleKernels::Downsample speckle_downsample;
SpeckleKernels::Upsample speckle_upsample;

inline constexpr SpeckleKernels speckle = {speckle_full, speckle_pyramid, speckle_downsample,
                                           speckle_upsample};

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL

#endif
