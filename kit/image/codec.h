#ifndef KIT_IMAGE_CODEC_H
#define KIT_IMAGE_CODEC_H

#include <string_view>
#include <vector>

#include "kit/common/byte_stream.h"
#include "kit/common/files.h"
#include "kit/image/image.h"
#include "kit/image/samples.h"

namespace kit {

/// The header of a format whose files are that and samples. Such images can be streamed.
struct SampleHeader {
  /// @throws Error
  SampleLayout (*read)(ByteStream& file, const ReadOptions& options);
  Bytes (*write)(const SampleLayout& layout);
  ByteOrder order;  ///< in which samples are written
  bool stacks;      ///< whether a file can hold several images
};

/// An image file format: whole files of one image from and to memory. Failures say what is wrong; the caller knows
/// where the file came from.
struct Codec {
  std::string_view name;                             ///< "png", "pgm", "npy", "raw", "tiff"
  std::vector<std::string_view> extensions;          ///< lower case; the first is the one written
  bool needs_size;                                   ///< decode() must be told it
  Image (*decode)(ByteView file, const Size& size);  ///< @throws Error
  Bytes (*encode)(const ImageView& image);           ///< @throws Error
  const SampleHeader* header;                        ///< null where there is more to the format
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
Image decode_tiff(ByteView file, const Size& size);
Bytes encode_tiff(const ImageView& image);

extern const SampleHeader kPgmHeader, kNpyHeader, kRawHeader;

}  // namespace kit

#endif
