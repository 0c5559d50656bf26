#ifndef FILTERPROCESSOR_KERNELS_RESIZE_RESIZE_VECTOR_H
#define FILTERPROCESSOR_KERNELS_RESIZE_RESIZE_VECTOR_H

#include "kernels/resize/resize.h"
#include "kernels/simd/simd.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

ResizeKernels::Resize resize_image;

inline constexpr ResizeKernels resize = {resize_image};

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL

#endif
