#ifndef KIT_IMAGE_PNG_RESTORE_H
#define KIT_IMAGE_PNG_RESTORE_H

#include "kit/common/files.h"
#include "kit/image/image.h"

namespace kit {

/// Turns the rows of a 16-bit grayscale PNG file back into its pixels.
/// @param rows each its filter's number and two bytes a pixel, big-endian: differences from the filter's guess
/// @param image of the rows' size, to be filled
/// @return false: a row has a filter that does not exist
bool restore_rows(ByteView rows, Image& image);

}  // namespace kit

#endif
