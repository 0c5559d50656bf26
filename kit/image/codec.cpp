#include "kit/image/codec.h"

#include <algorithm>

#include "kit/common/error.h"

namespace kit {

const std::vector<Codec>& codecs() {
  static const std::vector<Codec> all = {
      {"png", {".png"}, false, decode_png, encode_png},
      {"pgm", {".pgm"}, false, decode_pgm, encode_pgm},
      {"npy", {".npy"}, false, decode_npy, encode_npy},
      {"raw", {".raw", ".bin"}, true, decode_raw, encode_raw},
  };
  return all;
}

const Codec* codec_named(std::string_view name) {
  for (const Codec& codec : codecs()) {
    if (codec.name == name) return &codec;
  }
  return nullptr;
}

const Codec* codec_of_extension(std::string_view extension) {
  const std::string wanted = lower_case(extension);
  for (const Codec& codec : codecs()) {
    if (std::count(codec.extensions.begin(), codec.extensions.end(), wanted) > 0) return &codec;
  }
  return nullptr;
}

Image read_samples(ByteView bytes, ByteOrder order, std::uint64_t width, std::uint64_t height) {
  const std::size_t expected = 2 * count_pixels(width, height);
  if (bytes.size() != expected) {
    fail(bytes.size() < expected ? "is truncated: " : "is too long: ", bytes.size(),
         " bytes of pixels, expected ", expected, " for ", width, "x", height);
  }
  Image image = make_image(width, height);
  const std::size_t low = order == ByteOrder::little ? 0 : 1;
  for (std::size_t i = 0; i < image.pixels.size(); ++i) {
    image.pixels[i] = static_cast<std::uint16_t>(bytes[2 * i + low] | bytes[2 * i + 1 - low] << 8);
  }
  return image;
}

void append_samples(const ImageView& image, ByteOrder order, Bytes& bytes) {
  bytes.reserve(bytes.size() + 2 * image.pixels.size());
  for (const std::uint16_t pixel : image.pixels) {
    const auto low = static_cast<unsigned char>(pixel & 0xFF);
    const auto high = static_cast<unsigned char>(pixel >> 8);
    bytes.push_back(order == ByteOrder::little ? low : high);
    bytes.push_back(order == ByteOrder::little ? high : low);
  }
}

// Raw files: little-endian samples and nothing else.
Image decode_raw(ByteView file, const Size& size) {
  return read_samples(file, ByteOrder::little, size.width, size.height);
}

Bytes encode_raw(const ImageView& image) {
  Bytes file;
  append_samples(image, ByteOrder::little, file);
  return file;
}

}  // namespace kit
