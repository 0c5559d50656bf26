// Clearing of one depth.
#include "kernels/correction/correction.h"

#include "images.h"
#include "levels.h"

namespace filterprocessor::fuzz {

void run_input(FuzzInput& input) {
  const float scale = input.pick({1.0f, 0.1f, 0.125f, 10.0f, -0.3f, input.number<float>()});
  const Sides sides = any_sides(input);
  const Pixels pixels = any_pixels(input, sides);
  // The depth of some pixel, or any number.
  const std::uint16_t pixel = pixels[input.number<std::uint32_t>() % pixels.size()];
  const std::int32_t depth =
      input.one_in(4) ? input.number<std::int32_t>() : plain::depth_of(pixel, scale);
  compare_levels(input, [&](const KernelSet& kernels, Buffers& buffers) {
    kernels.correction.clear_depth(buffers.copy(pixels), pixels.size(), scale, depth);
  });
}

}  // namespace filterprocessor::fuzz
