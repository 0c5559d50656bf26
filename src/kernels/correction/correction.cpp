#include "kernels/correction/correction.h"

namespace filterprocessor {

namespace {

/// The first pixel value whose depth is `beyond`, given that all larger values' are too; 65536 if none
/// is.
template <typename Beyond>
std::uint32_t first_beyond(float scale, Beyond&& beyond) {
  std::uint32_t low = 0;
  std::uint32_t high = 65536;
  while (low < high) {
    const std::uint32_t middle = (low + high) / 2;
    if (beyond(plain::depth_of(static_cast<std::uint16_t>(middle), scale))) {
      high = middle;
    } else {
      low = middle + 1;
    }
  }
  return low;
}

}  // namespace

PixelRange pixels_of_depth(float scale, std::int32_t depth) {
  const bool falling = scale < 0;
  const std::uint32_t begin =
      first_beyond(scale, [=](std::int32_t d) { return falling ? d <= depth : d >= depth; });
  const std::uint32_t end =
      first_beyond(scale, [=](std::int32_t d) { return falling ? d < depth : d > depth; });
  if (begin >= end) return {true, 0, 0};
  return {false, static_cast<std::uint16_t>(begin), static_cast<std::uint16_t>(end - begin - 1)};
}

}  // namespace filterprocessor
