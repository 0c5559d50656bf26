#include <limits>

#include "cases/kernel_cases.h"

namespace filterprocessor {

KernelCase spatial_case(Source& source) {
  const auto passes =
      source.pick({&SpatialKernels::both, &SpatialKernels::horizontal, &SpatialKernels::vertical});
  const Sides sides = any_sides(source);
  const auto table_size =
      source.pick({std::size_t{7}, std::size_t{1}, source.size(0, 33), source.size(0, 255)});
  const Pixels table = any_table(source, table_size);
  const bool null_table = source.one_in(64);
  const auto shift =
      static_cast<unsigned>(source.pick({9, source.integer(0, 15), source.integer(0, 255)}));
  // There are ways of their own for a half and for weights whose blends stay clear of ties.
  const float alpha = source.pick({0.5f, static_cast<float>(source.integer(0, 100)) * 0.01f, 1e-40f,
                                   static_cast<float>(source.number<std::uint16_t>()) / 65535.0f,
                                   std::numeric_limits<float>::quiet_NaN()});
  const auto radius = static_cast<std::uint8_t>(source.integer(0, source.pick({3, 12, 255})));
  const Pixels pixels = any_pixels(source, sides);
  return [=](const KernelSet& kernels, Buffers& buffers) {
    std::uint16_t* image = buffers.copy(pixels);
    const std::uint16_t* entries = null_table ? nullptr : buffers.copy(table);
    (kernels.spatial.*passes)(image, sides.width, sides.height,
                              {{entries, static_cast<unsigned>(table.size()), shift}, alpha, radius});
  };
}

}  // namespace filterprocessor
