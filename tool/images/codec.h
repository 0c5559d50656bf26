#ifndef ZVFILTER_IMAGES_CODEC_H
#define ZVFILTER_IMAGES_CODEC_H

#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "text.h"

namespace zvfilter {

using Bytes = std::vector<unsigned char>;
using ByteView = std::span<const unsigned char>;

/// One channel of 16-bit samples, row after row without gaps; at least one pixel.
struct Image {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::vector<std::uint16_t> pixels;
  bool operator==(const Image&) const = default;
};

/// Three bytes a pixel: red, green, blue.
struct ColorImage {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  Bytes pixels;
};

/// What is wrong with an encoded image; the caller knows where it came from.
class BadImage : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A zero-filled image.
/// @throws BadImage without pixels or with more than 2^28
Image make_image(std::uint64_t width, std::uint64_t height);

/// An image file format: whole files from and to memory.
struct Codec {
  std::string_view name;                             ///< "png", "pgm", "npy", "raw"
  std::vector<std::string_view> extensions;          ///< lower case; the first is the one written
  bool needs_size;                                   ///< decode() must be told it
  Image (*decode)(ByteView file, const Size& size);  ///< @throws BadImage
  Bytes (*encode)(const Image& image);
};

/// Every format.
const std::vector<Codec>& codecs();
/// By name or by a file's extension in any letter case; null when there is none.
const Codec* codec_named(std::string_view name);
const Codec* codec_of_extension(std::string_view extension);

Image decode_png(ByteView file, const Size& size);
Bytes encode_png(const Image& image);
Bytes encode_png(const ColorImage& image);
Image decode_pgm(ByteView file, const Size& size);
Bytes encode_pgm(const Image& image);
Image decode_npy(ByteView file, const Size& size);
Bytes encode_npy(const Image& image);
Image decode_raw(ByteView file, const Size& size);
Bytes encode_raw(const Image& image);

enum class ByteOrder { little, big };
/// The image of exactly these bytes.
/// @throws BadImage as make_image(), or naming the number of bytes found and expected
Image read_samples(ByteView bytes, ByteOrder order, std::uint64_t width, std::uint64_t height);
void append_samples(const Image& image, ByteOrder order, Bytes& bytes);

}  // namespace zvfilter

#endif
