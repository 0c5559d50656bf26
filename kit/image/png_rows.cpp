#include "kit/image/png_rows.h"

#include <cstdlib>

namespace kit {

namespace {

unsigned char low_byte(int value) { return static_cast<unsigned char>(value); }

}  // namespace

void filter_row(RowFilter filter, RowBytes row, RowBytes above, std::size_t pixel_bytes,
                unsigned char* to) {
  if (filter == RowFilter::up) {
    for (std::size_t i = 0; i < row.size(); ++i) to[i] = low_byte(row[i] - above[i]);
    return;
  }
  for (std::size_t i = 0; i < pixel_bytes; ++i) to[i] = row[i];
  for (std::size_t i = pixel_bytes; i < row.size(); ++i) to[i] = low_byte(row[i] - row[i - pixel_bytes]);
}

std::size_t variation(RowBytes differences) {
  std::size_t sum = 0;
  for (const unsigned char difference : differences) {
    sum += static_cast<std::size_t>(std::abs(static_cast<signed char>(difference)));
  }
  return sum;
}

}  // namespace kit
