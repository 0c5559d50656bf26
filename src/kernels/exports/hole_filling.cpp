#include "filterprocessor/hole_filling.h"

#include "kernels/kernel_set.h"

int32_t depth_api_hole_filling_filter(uint16_t* depth, int32_t width, uint32_t height, int32_t mode) {
  const filterprocessor::HoleFillingKernels& kernels = filterprocessor::active_kernels().hole_filling;
  const auto fill = [=](filterprocessor::HoleFillingKernels::Fill* kernel) {
    if (width > 0) kernel(depth, static_cast<std::size_t>(width), height);
    return 0;
  };
  switch (mode) {
    case DEPTH_API_HOLE_FILL_TOP:
      return fill(kernels.top);
    case DEPTH_API_HOLE_FILL_SMALLER:
      return fill(kernels.smaller);
    case DEPTH_API_HOLE_FILL_LARGER:
      return fill(kernels.larger);
    default:
      return -1;
  }
}
