#include "cases/kernel_cases.h"

namespace filterprocessor {

namespace {

/// A part of what is allowed, a number around it or any number at all.
float any_part(Source& source) {
  switch (source.integer(0, 7)) {
    case 1:
      return source.pick({source.number<float>(), 1e-40f, 1.0000001f, 4e9f});
    case 2:
    case 3:
      return static_cast<float>(source.integer(-4000, 4000)) / 1000;
    default:
      return static_cast<float>(source.integer(0, 1000)) / 1000;
  }
}

}  // namespace

KernelCase temporal_case(Source& source) {
  const Sides sides = any_sides(source);
  const float diff_scale = any_part(source);
  const float weight = any_part(source);
  const bool own_history = source.one_in(16);
  const Pixels pixels = any_pixels(source, sides);
  Pixels before = any_pixels(source, sides);
  if (!source.one_in(4)) {
    for (std::size_t i = 0; i < before.size(); ++i) {
      before[i] = static_cast<std::uint16_t>(pixels[i] + before[i] % 64 - 32);
    }
  }
  return [=](const KernelSet& kernels, Buffers& buffers) {
    std::uint16_t* depth = buffers.copy(pixels);
    std::uint16_t* history = own_history ? depth : buffers.copy(before);
    kernels.temporal.smooth(depth, history, pixels.size(), diff_scale, weight);
  };
}

}  // namespace filterprocessor
