#ifndef FILTERPROCESSOR_KERNELS_RESIZE_RESIZE_PLAIN_H
#define FILTERPROCESSOR_KERNELS_RESIZE_RESIZE_PLAIN_H

#include "kernels/resize/resize.h"

namespace filterprocessor::plain {

ResizeKernels::Resize resize_image;

inline constexpr ResizeKernels resize = {resize_image};

}  // namespace filterprocessor::plain

#endif
