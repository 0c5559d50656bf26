#include "kit/image/png_rows.h"

#include <algorithm>
#include <cstdlib>

namespace kit {

namespace {

constexpr std::size_t kPixelBytes = 2;

unsigned char low_byte(int value) { return static_cast<unsigned char>(value); }

/// The neighbour that is nearest to left + above - corner; the first of them where two are. Noise decides, so
/// masks choose: a processor would guess half of its branches wrong.
int paeth(int left, int above, int corner) {
  const int across = left - corner, down = above - corner;
  const int to_left = std::abs(down), to_above = std::abs(across), to_corner = std::abs(across + down);
  const int take_corner = -(to_corner < to_above);
  const int other = above ^ ((above ^ corner) & take_corner);
  const int take_other = -(std::min(to_above, to_corner) < to_left);
  return left ^ ((left ^ other) & take_other);
}

/// Adds guess(left, above, corner) to each byte.
template <typename Guess>
void add_guesses(std::span<unsigned char> row, const unsigned char* above, const Guess& guess) {
  // The pixels to the left stay in registers: each waits for the one before it, for as short as can be.
  int left[kPixelBytes] = {}, corner[kPixelBytes] = {};
  for (std::size_t x = 0; x + kPixelBytes <= row.size(); x += kPixelBytes) {
    for (std::size_t i = 0; i < kPixelBytes; ++i) {
      left[i] = low_byte(row[x + i] + guess(left[i], above[x + i], corner[i]));
      corner[i] = above[x + i];
      row[x + i] = low_byte(left[i]);
    }
  }
}

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

bool restore_row(unsigned char filter, std::span<unsigned char> row, const unsigned char* above) {
  switch (static_cast<RowFilter>(filter)) {
    case RowFilter::none:
      return true;
    case RowFilter::sub:
      add_guesses(row, above, [](int left, int, int) { return left; });
      return true;
    case RowFilter::up:
      for (std::size_t i = 0; i < row.size(); ++i) row[i] = low_byte(row[i] + above[i]);
      return true;
    case RowFilter::average:
      add_guesses(row, above, [](int left, int up, int) { return (left + up) / 2; });
      return true;
    case RowFilter::paeth:
      add_guesses(row, above, paeth);
      return true;
  }
  return false;
}

}  // namespace kit
