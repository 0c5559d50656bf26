#include <algorithm>

#include "common/zeroed_buffer.h"

#include "kernels/margin/margin.h"

namespace filterprocessor::plain {

namespace {

using Index = std::int64_t;  // holds any sum of sides, margins and limits

/// Clears the pixels from `first` to `last` that the row has.
void clear_run(std::uint16_t* row, Index width, Index first, Index last) {
  for (Index x = std::max<Index>(first, 0); x <= std::min(last, width - 1); ++x) row[x] = 0;
}

void clear_row(std::uint16_t* row, Index width, Index y, const MarginRule& rule) {
  Index first = 0;
  while (first < width && row[first] == 0) ++first;
  if (first == width) return;
  Index last = width - 1;
  while (row[last] == 0) --last;

  const bool clipped = rule.chamfer != nullptr;
  const Index left = clipped ? rule.chamfer[2 * y] : rule.left;
  const Index right = clipped ? rule.chamfer[2 * y + 1] : rule.right;
  const Index limit = rule.limit_x;
  if (first < limit) {
    const Index end = first + left;
    clear_run(row, width, first, (clipped ? std::min(end, limit) : end) - 1);
  }
  if (last > width - limit) {
    const Index begin = last - right + 1;
    clear_run(row, width, clipped ? std::max(begin, width - limit + 1) : begin, last);
  }
}

bool clear_margins(std::uint16_t* pixels, std::int32_t width, std::int32_t height,
                   const MarginRule& rule) {
  const auto at = [=](Index x, Index y) { return pixels + y * width + x; };
  const std::int32_t columns = rule.margin_y > 0 ? width : 0;
  // The number of each column's first and last row with a valid pixel, from 1 on; 0: none.
  ZeroedBuffer<std::int32_t> rows;
  if (columns > 0 && !rows.fit(static_cast<std::uint64_t>(columns), 2)) return false;
  std::int32_t* const first_row = rows.data();
  std::int32_t* const last_row = first_row + columns;

  for (std::int32_t y = 0; y < height; ++y) {
    for (std::int32_t x = 0; x < columns; ++x) {
      if (*at(x, y) == 0) continue;
      if (first_row[x] == 0) first_row[x] = y + 1;
      last_row[x] = y + 1;
    }
    clear_row(at(0, y), width, y, rule);
  }

  const Index top_end = std::min(rule.limit_y, height);
  const Index bottom_begin = std::max(Index{height} - rule.limit_y + 1, Index{0});
  for (std::int32_t x = 0; x < columns; ++x) {
    if (first_row[x] == 0) continue;
    const Index first = first_row[x] - 1;
    const Index last = last_row[x] - 1;
    for (Index y = first; y < std::min(first + rule.margin_y, top_end); ++y) *at(x, y) = 0;
    for (Index y = last; y >= std::max(last - rule.margin_y + 1, bottom_begin); --y) *at(x, y) = 0;
  }
  return true;
}

}  // namespace

extern const MarginKernels margin = {clear_margins};

}  // namespace filterprocessor::plain
