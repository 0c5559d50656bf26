#include "filterprocessor/temporal.h"

#include "kernels/kernel_set.h"

int32_t depth_api_temporal_filter(uint16_t* depth, int32_t width, int32_t height, uint16_t* history,
                                  float diff_scale, float weight) {
  if (width > 0 && height > 0) {
    const std::size_t count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    filterprocessor::active_kernels().temporal.smooth(depth, history != nullptr ? history : depth, count,
                                                      diff_scale, weight);
  }
  return 0;
}
