#ifndef KIT_IMAGE_PNG_H
#define KIT_IMAGE_PNG_H

#include "kit/image/codec.h"

namespace kit {

enum class Compression {
  fast,   ///< what a run can wait for
  small,  ///< what an archive wants, at many times the cost
};
Bytes encode_png(const ImageView& image, Compression compression);

/// decode_png() by libpng, which knows every kind of file and says what is wrong with one.
Image decode_any_png(ByteView file);

}  // namespace kit

#endif
