#include <limits>

#include "cases/kernel_cases.h"

namespace filterprocessor {

KernelCase correction_case(Source& source) {
  using Scale = std::numeric_limits<float>;
  const float scale = source.pick({1.0f, 0.1f, 0.125f, 10.0f, -0.3f, 0.0f, 1e-9f, Scale::infinity(),
                                   -Scale::infinity(), Scale::quiet_NaN(), source.number<float>()});
  const Pixels pixels = any_pixels(source, any_sides(source));
  // The depth of some pixel, or any number.
  const std::uint16_t pixel = pixels[source.number<std::uint32_t>() % pixels.size()];
  const std::int32_t depth =
      source.one_in(4) ? source.number<std::int32_t>() : plain::depth_of(pixel, scale);
  return [=](const KernelSet& kernels, Buffers& buffers) {
    kernels.correction.clear_depth(buffers.copy(pixels), pixels.size(), scale, depth);
  };
}

}  // namespace filterprocessor
