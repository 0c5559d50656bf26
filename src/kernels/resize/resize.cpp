#include "kernels/resize/resize.h"

#include <algorithm>
#include <cmath>

#include "common/saturate.h"
#include "common/scale_step.h"

namespace filterprocessor {

std::int32_t target_extent(float source_extent, float scale, std::int32_t before, std::int32_t after) {
  return saturate<std::int32_t>(source_extent * scale + static_cast<float>(before) +
                                static_cast<float>(after));
}

ResizeAxis resize_axis(std::int32_t source_size, std::int32_t target_size, float scale,
                       std::int32_t before) {
  const auto added = static_cast<float>(before);
  const auto end =
      std::min(target_extent(static_cast<float>(source_size), scale, before, 0), target_size);
  const std::int32_t first = std::max(before, 0);
  const std::uint32_t skipped = before < 0 ? saturate<std::uint32_t>(std::fabs(added / scale)) : 0;
  return {.source_size = static_cast<std::size_t>(std::max(source_size, 0)),
          .target_size = static_cast<std::size_t>(target_size),
          .first = static_cast<std::size_t>(std::min(first, std::max(end, 0))),
          .end = static_cast<std::size_t>(std::max(end, 0)),
          .source_start = skipped << 16,
          .source_step = scale_step(scale)};
}

}  // namespace filterprocessor
