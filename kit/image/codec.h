#ifndef KIT_IMAGE_CODEC_H
#define KIT_IMAGE_CODEC_H

#include <string_view>
#include <vector>

#include "kit/common/files.h"
#include "kit/image/image.h"

namespace kit {

/// An image file format: whole files from and to memory. Failures say what is wrong; the caller knows
/// where the file came from.
struct Codec {
  std::string_view name;                             ///< "png", "pgm", "npy", "raw"
  std::vector<std::string_view> extensions;          ///< lower case; the first is the one written
  bool needs_size;                                   ///< decode() must be told it
  Image (*decode)(ByteView file, const Size& size);  ///< @throws Error
  Bytes (*encode)(const ImageView& image);           ///< @throws Error
};

/// Every format.
const std::vector<Codec>& codecs();
/// By name or by a file's extension in any letter case; null when there is none.
const Codec* codec_named(std::string_view name);
const Codec* codec_of_extension(std::string_view extension);

Image decode_png(ByteView file, const Size& size);
Bytes encode_png(const ImageView& image);
Bytes encode_png(const ColorImage& image);
Image decode_pgm(ByteView file, const Size& size);
Bytes encode_pgm(const ImageView& image);
Image decode_npy(ByteView file, const Size& size);
Bytes encode_npy(const ImageView& image);
Image decode_raw(ByteView file, const Size& size);
Bytes encode_raw(const ImageView& image);

enum class ByteOrder { little, big };
/// The image of exactly these bytes.
/// @throws Error as make_image(), or naming the number of bytes found and expected
Image read_samples(ByteView bytes, ByteOrder order, std::uint64_t width, std::uint64_t height);
void append_samples(const ImageView& image, ByteOrder order, Bytes& bytes);

}  // namespace kit

#endif
