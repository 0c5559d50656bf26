// Spatial smoothing: each pair of passes and both.
#include <limits>

#include "images.h"
#include "levels.h"

namespace filterprocessor::fuzz {

void run_input(FuzzInput& input) {
  const auto passes =
      input.pick({&SpatialKernels::both, &SpatialKernels::horizontal, &SpatialKernels::vertical});
  const Sides sides = any_sides(input);
  Pixels table = any_table(
      input, static_cast<std::size_t>(input.pick({7, 1, input.integer(0, 33), input.integer(0, 255)})));
  const bool null_table = input.one_in(64);
  const unsigned shift =
      static_cast<unsigned>(input.pick({9, input.integer(0, 15), input.integer(0, 255)}));
  // There are ways of their own for a half and for weights whose blends stay clear of ties.
  const float alpha = input.pick({0.5f, static_cast<float>(input.integer(0, 100)) * 0.01f,
                                  static_cast<float>(input.number<std::uint16_t>()) / 65535.0f,
                                  std::numeric_limits<float>::quiet_NaN()});
  const auto radius = static_cast<std::uint8_t>(input.integer(0, input.pick({3, 12, 255})));
  const Pixels pixels = any_pixels(input, sides);
  compare_levels(input, [&](const KernelSet& kernels, Buffers& buffers) {
    std::uint16_t* image = buffers.copy(pixels);
    const std::uint16_t* entries = buffers.copy(table);
    const ThresholdTable thresholds{null_table ? nullptr : entries, static_cast<unsigned>(table.size()),
                                    shift};
    (kernels.spatial.*passes)(image, sides.width, sides.height, {thresholds, alpha, radius});
  });
}

}  // namespace filterprocessor::fuzz
