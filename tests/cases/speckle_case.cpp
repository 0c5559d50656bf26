#include "cases/kernel_cases.h"

namespace filterprocessor {

namespace {

std::int32_t any_amount(Source& source) {
  return source.one_in(3) ? source.number<std::int32_t>() >> source.integer(0, 24)
                          : source.integer(-2, 61);
}

KernelCase removal(Source& source, SpeckleKernels::Remove* SpeckleKernels::*form, const Sides& sides) {
  const auto invalid = source.pick<std::uint16_t>({0, 0, 8192, 65532, 65535});
  const auto table_size = source.pick({std::size_t{7}, source.size(0, 33), source.size(0, 255)});
  const Pixels table = any_table(source, table_size);
  const auto shift =
      static_cast<std::uint8_t>(source.pick({9, source.integer(0, 15), source.integer(0, 255)}));
  const bool by_table = source.flag();
  const bool null_table = source.one_in(64);
  const std::int32_t max_diff = any_amount(source);

  const bool by_map = source.one_in(3);
  const std::size_t cols = 1 + source.size(0, 39) % sides.width;
  const std::size_t rows = 1 + source.size(0, 39) % sides.height;
  const Pixels map = by_map ? any_table(source, cols * rows) : Pixels{};
  const std::int32_t max_size = any_amount(source);

  const Pixels pixels = any_pixels(source, sides, invalid);
  return [=](const KernelSet& kernels, Buffers& buffers) {
    const SpeckleImage image{buffers.copy(pixels), buffers.work_space(9 * sides.area()), sides.width,
                             sides.height, invalid};
    const std::uint16_t* entries = null_table ? nullptr : buffers.copy(table);
    const auto threshold =
        by_table ? SpeckleThreshold::from_table(entries, shift, static_cast<std::uint8_t>(table.size()))
                 : SpeckleThreshold::fixed(max_diff);
    const auto limit =
        by_map ? SpeckleLimit{0, buffers.copy(map), cols, rows} : SpeckleLimit::fixed(max_size);
    (kernels.speckle.*form)(image, threshold, limit);
  };
}

KernelCase resampling(Source& source, const Sides& sides, bool up) {
  const Sides half{sides.width / 2, sides.height / 2};
  const Pixels full_pixels = any_pixels(source, sides);
  const Pixels half_pixels = any_pixels(source, half);
  const std::int32_t max_diff = any_amount(source);
  return [=](const KernelSet& kernels, Buffers& buffers) {
    std::uint16_t* full = buffers.copy(full_pixels);
    std::uint16_t* small = buffers.copy(half_pixels);
    if (up) {
      kernels.speckle.upsample(full, sides.width, small, half.width, half.height, max_diff);
    } else {
      kernels.speckle.downsample(full, sides.width, small, half.width, half.height);
    }
  };
}

}  // namespace

KernelCase speckle_case(Source& source) {
  const int kernel = source.integer(0, 9);
  const Sides sides = any_sides(source, kernel < 4 ? 1 : 2);
  if (kernel >= 8) return resampling(source, sides, kernel == 8);
  return removal(source, kernel < 4 ? &SpeckleKernels::full : &SpeckleKernels::pyramid, sides);
}

}  // namespace filterprocessor
