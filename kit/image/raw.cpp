// Raw files: little-endian samples and nothing else.
#include "kit/image/codec.h"

namespace kit {

Image decode_raw(ByteView file, const Size& size) {
  return read_samples(file, ByteOrder::little, size.width, size.height);
}

Bytes encode_raw(const ImageView& image) {
  Bytes file;
  append_samples(image, ByteOrder::little, file);
  return file;
}

}  // namespace kit
