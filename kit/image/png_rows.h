#ifndef KIT_IMAGE_PNG_ROWS_H
#define KIT_IMAGE_PNG_ROWS_H

#include <cstddef>
#include <span>

namespace kit {

/// How a row of a PNG file stands in for its bytes: as differences from a guess. By the number in the file.
enum class RowFilter : unsigned char { none, sub, up, average, paeth };

using RowBytes = std::span<const unsigned char>;

/// Writes a row's differences from the pixel to the left or from the row above.
/// @param filter sub or up
/// @param above of the same length
void filter_row(RowFilter filter, RowBytes row, RowBytes above, std::size_t pixel_bytes,
                unsigned char* to);

/// How much the differences vary: less compresses better.
std::size_t variation(RowBytes differences);

}  // namespace kit

#endif
