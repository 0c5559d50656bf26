#include "kit/image/image.h"

#include "kit/common/error.h"

namespace kit {

std::optional<Size> parse_size(std::string_view text) {
  const auto cross = text.find('x');
  if (cross == std::string_view::npos) return std::nullopt;
  const auto width = parse_integer(text.substr(0, cross));
  const auto height = parse_integer(text.substr(cross + 1));
  if (!width || !height || *width <= 0 || *height <= 0) return std::nullopt;
  return Size{static_cast<std::uint32_t>(*width), static_cast<std::uint32_t>(*height)};
}

std::size_t count_pixels(std::uint64_t width, std::uint64_t height) {
  if (width == 0 || height == 0) fail("has no pixels (", width, "x", height, ")");
  if (width > kMostPixels || height > kMostPixels || width * height > kMostPixels) {
    fail("claims ", width, "x", height, " pixels; at most ", kMostPixels, " are read");
  }
  return static_cast<std::size_t>(width * height);
}

Image make_image(std::uint64_t width, std::uint64_t height) {
  const std::size_t count = count_pixels(width, height);
  return {static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height),
          std::vector<std::uint16_t>(count)};
}

}  // namespace kit
