// Nearest-neighbour resizing with bands added and removed.
#include "images.h"
#include "levels.h"

namespace filterprocessor::fuzz {

namespace {

struct Target {
  std::int32_t before, after, size;
};

Target any_target(FuzzInput& input, std::size_t source_size, float scale) {
  const auto band = [&] { return input.pick({0, input.integer(-20, 20), input.integer(-2000, 2000)}); };
  Target target = {.before = band(), .after = band(), .size = 0};
  target.size = target_extent(static_cast<float>(source_size), scale, target.before, target.after);
  return target;
}

}  // namespace

void run_input(FuzzInput& input) {
  const Sides sides = any_sides(input);
  const float scale = input.pick({1.0f, 2.0f, 0.5f, static_cast<float>(input.integer(100, 4000)) * 0.001f,
                                  static_cast<float>(input.integer(1, 50000)) * 0.001f});
  const Target columns = any_target(input, sides.width, scale);
  const Target rows = any_target(input, sides.height, scale);
  constexpr std::int64_t kMostPixels = 1 << 18;
  if (columns.size < 1 || rows.size < 1 || std::int64_t{columns.size} * rows.size > kMostPixels) return;

  const ResizeAxis x =
      resize_axis(static_cast<std::int32_t>(sides.width), columns.size, scale, columns.before);
  const ResizeAxis y =
      resize_axis(static_cast<std::int32_t>(sides.height), rows.size, scale, rows.before);
  const Pixels pixels = any_pixels(input, sides);
  const Pixels target(x.target_size * y.target_size, 0xdead);
  compare_levels(input, [&](const KernelSet& kernels, Buffers& buffers) {
    const std::uint16_t* source = buffers.copy(pixels);
    kernels.resize.resize(source, x, y, buffers.copy(target));
  });
}

}  // namespace filterprocessor::fuzz
