#include "kernels/disparity/depth_sampling.h"

#include <algorithm>
#include <cstddef>

#include "common/saturate.h"
#include "common/scale_step.h"

namespace filterprocessor {

void sample_depth(const DepthSampling& s, const std::uint16_t* source, std::uint32_t width,
                  std::uint32_t height, std::span<const std::uint16_t> table, std::uint16_t* target) {
  const auto target_width = static_cast<std::size_t>(s.target_width);
  std::fill_n(target, target_width * static_cast<std::size_t>(s.target_height), std::uint16_t{0});
  const auto rows =
      std::min(s.target_height, saturate<std::int32_t>(s.scale * static_cast<float>(height)));
  const auto cols = std::min(s.target_width, saturate<std::int32_t>(s.scale * static_cast<float>(width)));
  if (rows < 1 || cols < 1) return;

  const std::uint32_t step = scale_step(s.scale);
  const auto inside = [](std::int64_t at, std::int64_t border, std::int64_t size) {
    return border <= at && at < size - border;
  };
  std::uint32_t sy = static_cast<std::uint32_t>(s.y_cut) << 16;
  for (std::int32_t r = 0; r < rows; ++r, sy += step) {
    if (!inside(r, s.y_set, s.target_height) || sy >> 16 >= height) continue;
    const std::uint16_t* row = source + std::size_t{sy >> 16} * width;
    std::uint16_t* out = target + static_cast<std::size_t>(r) * target_width;
    std::uint32_t sx = static_cast<std::uint32_t>(s.x_cut) << 16;
    for (std::int32_t c = 0; c < cols; ++c, sx += step) {
      if (!inside(c, s.x_set, s.target_width) || sx >> 16 >= width) continue;
      const std::uint16_t code = row[sx >> 16];
      out[c] = code < table.size() ? table[code] : std::uint16_t{0};
    }
  }
}

}  // namespace filterprocessor
