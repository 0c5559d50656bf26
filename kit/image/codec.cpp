#include "kit/image/codec.h"

#include <algorithm>

#include "kit/common/error.h"

namespace kit {

namespace {

/// The one image of a file that says no more than its header and samples.
Image decode(const SampleHeader& header, ByteView file, const ReadOptions& options) {
  ViewStream stream(file);
  const SampleLayout layout = header.read(stream, options);
  if (layout.stack)
    fail("has the shape (", layout.count, ", ", layout.height, ", ", layout.width,
         "); expected (height, width)");
  return read_samples(stream.rest(), layout, options);
}

Bytes encode(const SampleHeader& header, const ImageView& image) {
  SampleLayout layout{.width = image.width, .height = image.height};
  layout.order = header.order;
  Bytes file = header.write(layout);
  append_samples(image, header.order, file);
  return file;
}

}  // namespace

const std::vector<Codec>& codecs() {
  static const std::vector<Codec> all = {
      {"png", {".png"}, false, decode_png, encode_png, nullptr},
      {"pgm", {".pgm"}, false, decode_pgm, encode_pgm, &kPgmHeader},
      {"npy", {".npy"}, false, decode_npy, encode_npy, &kNpyHeader},
      {"raw", {".raw", ".bin"}, true, decode_raw, encode_raw, &kRawHeader},
      {"tiff", {".tif", ".tiff"}, false, decode_tiff, encode_tiff, nullptr},
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

Image decode_pgm(ByteView file, const Size&) { return decode(kPgmHeader, file, {}); }
Bytes encode_pgm(const ImageView& image) { return encode(kPgmHeader, image); }
Image decode_npy(ByteView file, const Size&) { return decode(kNpyHeader, file, {}); }
Bytes encode_npy(const ImageView& image) { return encode(kNpyHeader, image); }
Image decode_raw(ByteView file, const Size& size) { return decode(kRawHeader, file, {.size = size}); }
Bytes encode_raw(const ImageView& image) { return encode(kRawHeader, image); }

// Raw files: samples and nothing else, little-endian unless somebody says otherwise.
extern const SampleHeader kRawHeader = {
    [](ByteStream&, const ReadOptions& options) {
      SampleLayout layout{.width = options.size.width, .height = options.size.height};
      layout.order = options.raw_order;
      return layout;
    },
    [](const SampleLayout&) { return Bytes(); }, ByteOrder::little, true};

}  // namespace kit
