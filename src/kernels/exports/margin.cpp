#include "filterprocessor/margin.h"

#include <algorithm>
#include <cmath>

#include "common/saturate.h"
#include "kernels/kernel_set.h"

namespace {

using filterprocessor::MarginRule;

enum Status : int32_t { kDone = 0, kNullData = -1, kMarginAboveLimit = -2, kBadArgument = -3, kNoMemory = -4 };

int32_t clear(uint16_t* data, int32_t width, int32_t height, const MarginRule& rule) {
  if (width < 1 || height < 1) return kDone;
  return filterprocessor::active_kernels().margin.clear(data, width, height, rule) ? kDone : kNoMemory;
}

struct Sides {
  int32_t left, right;
};

/// The margins for an image of at least one pixel, from its gaps in four rows.
Sides choose_margins(const uint16_t* data, int32_t width, int32_t height, int32_t large, int32_t small) {
  int64_t left_gaps = 0;
  int64_t right_gaps = 4 * int64_t{width};
  for (const double share : {0.2, 0.4, 0.6, 0.8}) {
    const uint16_t* row = data + static_cast<int64_t>(height * share) * width;
    int32_t last = width - 1;
    while (last > 0 && row[last] == 0) --last;
    int32_t first = 0;
    while (first < last && row[first] == 0) ++first;
    // Without a valid pixel both are 0.
    left_gaps += first;
    right_gaps -= last;
  }
  // The right gaps are never 0: a last column is smaller than the width.
  const auto left = static_cast<double>(left_gaps);
  const auto right = static_cast<double>(right_gaps);
  if (right * 1.2 < left) return {large, small};
  return {small, left * 1.2 < right ? large : small};
}

/// 32-bit arithmetic that wraps around.
int32_t wrapped(int64_t value) { return static_cast<int32_t>(value); }

int32_t whole_root(int32_t value) {
  return filterprocessor::saturate<int32_t>(std::sqrt(static_cast<double>(value)));
}

}  // namespace

int32_t depth_api_horizontal_margin_filter(uint16_t* data, int32_t width, int32_t height, int32_t margin,
                                           int32_t limit) {
  if (data == nullptr) return kNullData;
  if (margin > limit) return kMarginAboveLimit;
  return clear(data, width, height, {.left = margin, .right = margin, .limit_x = limit});
}

int32_t depth_api_margin_filter(uint16_t* data, int32_t width, int32_t height, int32_t margin_x,
                                int32_t margin_y, int32_t limit_x, int32_t limit_y) {
  if (data == nullptr) return kNullData;
  if (margin_x > limit_x || margin_y > limit_y) return kMarginAboveLimit;
  return clear(data, width, height, {margin_x, margin_x, limit_x, margin_y, limit_y});
}

int32_t depth_api_margin_filter_asym(uint16_t* data, int32_t width, int32_t height, int32_t margin_large,
                                     int32_t margin_small, int32_t margin_y, int32_t limit_x,
                                     int32_t limit_y) {
  if (data == nullptr) return kNullData;
  if (margin_large > limit_x || margin_small > limit_x || margin_y > limit_y) return kMarginAboveLimit;
  if (margin_large < margin_small) return kBadArgument;
  if (width < 1 || height < 1) return kDone;
  const Sides margin = choose_margins(data, width, height, margin_large, margin_small);
  return clear(data, width, height, {margin.left, margin.right, limit_x, margin_y, limit_y});
}

int32_t depth_api_margin_filter_with_chamfer(uint16_t* data, int32_t width, int32_t height,
                                             int32_t margin_y, int32_t limit_x, int32_t limit_y,
                                             const uint16_t* chamfer) {
  if (data == nullptr) return kNullData;
  if (margin_y > limit_y) return kMarginAboveLimit;
  if (chamfer == nullptr) return kBadArgument;
  return clear(data, width, height,
               {.limit_x = limit_x, .margin_y = margin_y, .limit_y = limit_y, .chamfer = chamfer});
}

int32_t depth_api_init_margin_chamfer(uint16_t* chamfer, int32_t span, int32_t count,
                                      int32_t corner_first, int32_t base, int32_t corner_second,
                                      int32_t radius) {
  if (chamfer == nullptr) return kNullData;
  if (corner_second == 0) corner_second = corner_first;
  if (radius == 0) radius = std::max(span, count) / 2;

  const int64_t half_chord_squared = wrapped(int64_t{count} * count) >> 2;
  const int32_t c = wrapped(wrapped(int64_t{radius} * radius) - half_chord_squared);
  const int32_t end = whole_root(c);
  for (int32_t i = 0; i < count; ++i) {
    const int64_t rise = whole_root(wrapped(int64_t{c} + wrapped(int64_t{count - i} * i))) - end;
    const auto margin = [=](int32_t corner) {
      return static_cast<uint16_t>(rise <= corner ? base + (corner - rise) : base);
    };
    chamfer[2 * int64_t{i}] = margin(corner_first);
    chamfer[2 * int64_t{i} + 1] = margin(corner_second);
  }
  return kDone;
}
