#include "cases/kernel_cases.h"

namespace filterprocessor {

namespace {

/// Bands are added or removed; the target has at most `most` pixels, and none is made 1.
ResizeAxis any_axis(Source& source, std::size_t size, float scale, std::int32_t most) {
  const auto any_band = [&] {
    return source.pick({0, source.integer(-20, 20), source.integer(-2000, 2000)});
  };
  const std::int32_t before = any_band();
  const std::int32_t extent = target_extent(static_cast<float>(size), scale, before, any_band());
  return resize_axis(static_cast<std::int32_t>(size), std::clamp(extent, 1, most), scale, before);
}

}  // namespace

KernelCase resize_case(Source& source) {
  const Sides sides = any_sides(source);
  const float scale =
      source.pick({1.0f, 2.0f, 0.5f, static_cast<float>(source.integer(100, 4000)) * 0.001f,
                   static_cast<float>(source.integer(1, 50000)) * 0.001f});
  constexpr std::int32_t kMostPixels = 1 << 16;
  const ResizeAxis columns = any_axis(source, sides.width, scale, kMostPixels);
  const ResizeAxis rows =
      any_axis(source, sides.height, scale, kMostPixels / static_cast<std::int32_t>(columns.target_size));
  const Pixels pixels = any_pixels(source, sides);
  const Pixels target(columns.target_size * rows.target_size, 0xdead);
  return [=](const KernelSet& kernels, Buffers& buffers) {
    const std::uint16_t* from = buffers.copy(pixels);
    kernels.resize.resize(from, columns, rows, buffers.copy(target));
  };
}

}  // namespace filterprocessor
