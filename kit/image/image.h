#ifndef KIT_IMAGE_IMAGE_H
#define KIT_IMAGE_IMAGE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace kit {

struct Size {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  bool operator==(const Size&) const = default;
};
/// "640x480": both above 0, or nothing.
std::optional<Size> parse_size(std::string_view text);

/// How many a sample may have.
inline constexpr std::size_t kSampleValues = 65536;

/// Samples that somebody else holds.
struct ImageView {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::span<const std::uint16_t> pixels;
};

/// One channel of 16-bit samples, row after row without gaps; at least one pixel.
struct Image {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::vector<std::uint16_t> pixels;
  bool operator==(const Image&) const = default;
  operator ImageView() const { return {width, height, pixels}; }
};

using Rgb = std::array<unsigned char, 3>;

struct ColorImage {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::vector<Rgb> pixels;
};

inline constexpr std::size_t kMostPixels = std::size_t{1} << 28;
/// @throws Error for none and for more than kMostPixels
std::size_t count_pixels(std::uint64_t width, std::uint64_t height);
/// A zero-filled image.
/// @throws Error as count_pixels()
Image make_image(std::uint64_t width, std::uint64_t height);

}  // namespace kit

#endif
