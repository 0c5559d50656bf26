#include <algorithm>

#include "kernels/resize/resize.h"

namespace filterprocessor::plain {

namespace {

void resize_image(const std::uint16_t* source, const ResizeAxis& columns, const ResizeAxis& rows,
                  std::uint16_t* target) {
  std::fill_n(target, columns.target_size * rows.target_size, std::uint16_t{0});
  std::uint32_t row_counter = rows.start;
  for (std::size_t r = rows.first; r < rows.end; ++r, row_counter += rows.step) {
    const std::size_t y = row_counter >> 16;
    if (y >= rows.source_size) continue;
    std::uint32_t column_counter = columns.start;
    for (std::size_t c = columns.first; c < columns.end; ++c, column_counter += columns.step) {
      const std::size_t x = column_counter >> 16;
      if (x < columns.source_size) {
        target[r * columns.target_size + c] = source[y * columns.source_size + x];
      }
    }
  }
}

}  // namespace

extern const ResizeKernels resize = {resize_image};

}  // namespace filterprocessor::plain
