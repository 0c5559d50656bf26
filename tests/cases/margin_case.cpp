#include <limits>

#include "cases/kernel_cases.h"

namespace filterprocessor {

namespace {

/// Mostly within an image, at times anything.
std::int32_t any_length(Source& source, std::size_t side) {
  using Length = std::numeric_limits<std::int32_t>;
  if (!source.one_in(10))
    return source.integer(-2, source.pick({9, 20, 100, static_cast<int>(side) + 3}));
  return source.pick({source.number<std::int32_t>(), 65536, Length::min(), Length::min() + 1,
                      Length::max() - 1, Length::max()});
}

}  // namespace

AnyMargins any_margins(Source& source, const Sides& sides) {
  const auto [width, height] = sides;
  AnyMargins any;
  any.rule = {.left = any_length(source, width),
              .right = any_length(source, width),
              .limit_x = any_length(source, width)};
  if (!source.one_in(4)) {
    any.rule.margin_y = any_length(source, height);
    any.rule.limit_y = any_length(source, height);
  }
  any.chamfer.resize(source.one_in(4) ? 2 * sides.height : 0);
  for (std::uint16_t& margin : any.chamfer) {
    margin =
        static_cast<std::uint16_t>(source.one_in(8) ? source.integer(0, 65535) : source.integer(0, 63));
  }
  return any;
}

KernelCase margin_case(Source& source) {
  const Sides sides = any_sides(source);
  const AnyMargins margins = any_margins(source, sides);
  const Pixels pixels = any_pixels(source, sides);
  return [=](const KernelSet& kernels, Buffers& buffers) {
    MarginRule rule = margins.rule;
    if (!margins.chamfer.empty()) rule.chamfer = buffers.copy(margins.chamfer);
    kernels.margin.clear(buffers.copy(pixels), static_cast<std::int32_t>(sides.width),
                         static_cast<std::int32_t>(sides.height), rule);
  };
}

}  // namespace filterprocessor
