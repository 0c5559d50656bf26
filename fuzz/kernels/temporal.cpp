// Temporal smoothing, with the history apart from the frame and in the frame itself.
#include "images.h"
#include "levels.h"

namespace filterprocessor::fuzz {

namespace {

/// A part of what is allowed, a number around it or any number at all.
float any_part(FuzzInput& input) {
  switch (input.number<std::uint8_t>() % 8) {
    case 1:
      return input.number<float>();
    case 2:
    case 3:
      return static_cast<float>(input.integer(-4000, 4000)) / 1000;
    default:
      return static_cast<float>(input.integer(0, 1000)) / 1000;
  }
}

}  // namespace

void run_input(FuzzInput& input) {
  const Sides sides = any_sides(input);
  const float diff_scale = any_part(input);
  const float weight = any_part(input);
  const bool own_history = input.one_in(16);
  const Pixels pixels = any_pixels(input, sides);
  Pixels before = any_pixels(input, sides);
  if (!input.one_in(4)) {
    for (std::size_t i = 0; i < before.size(); ++i) {
      before[i] = static_cast<std::uint16_t>(pixels[i] + before[i] % 64 - 32);
    }
  }
  compare_levels(input, [&](const KernelSet& kernels, Buffers& buffers) {
    std::uint16_t* depth = buffers.copy(pixels);
    std::uint16_t* history = own_history ? depth : buffers.copy(before);
    kernels.temporal.smooth(depth, history, pixels.size(), diff_scale, weight);
  });
}

}  // namespace filterprocessor::fuzz
