#ifndef KIT_IMAGE_PNG_ROWS_H
#define KIT_IMAGE_PNG_ROWS_H

#include <cstddef>
#include <span>

namespace kit {

/// How a row of a PNG file stands in for its bytes: as differences from a guess.
enum class RowFilter : unsigned char { none, sub, up, average, paeth };

using RowBytes = std::span<const unsigned char>;

/// Writes a row's differences from the pixel to the left or from the row above.
/// @param filter sub or up
/// @param above of the same length
void filter_row(RowFilter filter, RowBytes row, RowBytes above, std::size_t pixel_bytes,
                unsigned char* to);

/// How much the differences vary: less compresses better.
std::size_t variation(RowBytes differences);

/// Turns the differences of a row with two bytes a pixel back into its bytes.
/// @param filter as it stands in the file
/// @param above of the same length
/// @return false: there is no such filter
bool restore_row(unsigned char filter, std::span<unsigned char> row, const unsigned char* above);

}  // namespace kit

#endif
