// Margin clearing in rows and columns, with margins for all rows or for each.
#include "images.h"
#include "levels.h"

namespace filterprocessor::fuzz {

namespace {

/// Mostly within an image, at times anything.
std::int32_t any_length(FuzzInput& input) {
  return input.one_in(16) ? input.number<std::int32_t>() : input.integer(-2, input.pick({20, 100, 700}));
}

}  // namespace

void run_input(FuzzInput& input) {
  const Sides sides = any_sides(input);
  MarginRule rule = {.left = any_length(input), .right = any_length(input), .limit_x = any_length(input)};
  if (input.flag()) {
    rule.margin_y = any_length(input);
    rule.limit_y = any_length(input);
  }
  Pixels chamfer;
  if (input.one_in(4)) {
    for (std::size_t i = 0; i < 2 * sides.height; ++i) {
      const auto margin = input.number<std::uint16_t>();
      chamfer.push_back(static_cast<std::uint16_t>(margin % 8 == 0 ? margin : margin % 64));
    }
  }
  const Pixels pixels = any_pixels(input, sides);
  compare_levels(input, [&](const KernelSet& kernels, Buffers& buffers) {
    MarginRule with_chamfer = rule;
    if (!chamfer.empty()) with_chamfer.chamfer = buffers.copy(chamfer);
    kernels.margin.clear(buffers.copy(pixels), static_cast<std::int32_t>(sides.width),
                         static_cast<std::int32_t>(sides.height), with_chamfer);
  });
}

}  // namespace filterprocessor::fuzz
