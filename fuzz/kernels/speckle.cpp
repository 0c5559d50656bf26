// Speckle removal at full resolution and on the pyramid's lattice, and the way down to half size and
// back.
#include "images.h"
#include "levels.h"

namespace filterprocessor::fuzz {

namespace {

std::int32_t any_amount(FuzzInput& input) {
  return input.one_in(3) ? input.number<std::int32_t>() >> input.integer(0, 24) : input.integer(-2, 61);
}

void remove_speckles(FuzzInput& input, SpeckleKernels::Remove* SpeckleKernels::*form,
                     const Sides& sides) {
  const auto invalid = input.pick<std::uint16_t>({0, 0, 8192, 65532, 65535});
  const Pixels table = any_table(
      input, static_cast<std::size_t>(input.pick({7, input.integer(0, 33), input.integer(0, 255)})));
  const auto shift =
      static_cast<std::uint8_t>(input.pick({9, input.integer(0, 15), input.integer(0, 255)}));
  const bool by_table = input.flag();
  const bool null_table = input.one_in(64);
  const std::int32_t max_diff = any_amount(input);

  const auto up_to = [&](std::size_t side) {
    return static_cast<std::size_t>(input.integer(1, static_cast<int>(std::min<std::size_t>(side, 40))));
  };
  const bool by_map = input.one_in(3);
  const std::size_t cols = up_to(sides.width);
  const std::size_t rows = up_to(sides.height);
  const Pixels map = by_map ? any_table(input, cols * rows) : Pixels{};
  const std::int32_t max_size = any_amount(input);

  const Pixels pixels = any_pixels(input, sides, invalid);
  compare_levels(input, [&](const KernelSet& kernels, Buffers& buffers) {
    const SpeckleImage image{buffers.copy(pixels), buffers.work_space(9 * sides.area()), sides.width,
                             sides.height, invalid};
    const std::uint16_t* entries = null_table ? nullptr : buffers.copy(table);
    const auto threshold =
        by_table ? SpeckleThreshold::from_table(entries, shift, static_cast<std::uint8_t>(table.size()))
                 : SpeckleThreshold::fixed(max_diff);
    const auto limit =
        by_map ? SpeckleLimit{0, buffers.copy(map), cols, rows} : SpeckleLimit::fixed(max_size);
    (kernels.speckle.*form)(image, threshold, limit);
  });
}

void resample(FuzzInput& input, const Sides& sides, bool up) {
  const Sides half{sides.width / 2, sides.height / 2};
  const Pixels full_pixels = any_pixels(input, sides);
  const Pixels half_pixels = any_pixels(input, half);
  const std::int32_t max_diff = any_amount(input);
  compare_levels(input, [&](const KernelSet& kernels, Buffers& buffers) {
    std::uint16_t* full = buffers.copy(full_pixels);
    std::uint16_t* small = buffers.copy(half_pixels);
    if (up) {
      kernels.speckle.upsample(full, sides.width, small, half.width, half.height, max_diff);
    } else {
      kernels.speckle.downsample(full, sides.width, small, half.width, half.height);
    }
  });
}

}  // namespace

void run_input(FuzzInput& input) {
  const int kernel = input.integer(0, 9);
  const bool full_resolution = kernel < 4;
  const Sides sides = any_sides(input, full_resolution ? 1 : 2);
  if (kernel < 8) {
    remove_speckles(input, full_resolution ? &SpeckleKernels::full : &SpeckleKernels::pyramid, sides);
  } else {
    resample(input, sides, kernel == 8);
  }
}

}  // namespace filterprocessor::fuzz
