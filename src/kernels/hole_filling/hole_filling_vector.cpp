#include "kernels/hole_filling/hole_filling.h"
#include "kernels/simd/simd.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

namespace {

constexpr std::size_t kLanes = U16::lanes;

// Both orders as "keep the larger, 0 is none": the smaller of two values is the larger of their
// complements. ranked() undoes itself.
struct KeepLarger {
  static U16 ranked(U16 values) { return values; }
};
struct KeepSmaller {
  /// 65535 - value, and 0 for 0: going below 0 wraps first and saturates then.
  static U16 ranked(U16 values) { return subtract_saturated(U16::splat(65534), values - U16::splat(1)); }
};

/// Fills the holes of one vector, given the larger of its ranked neighbours above and below and, in all
/// lanes, the final value to the left. A hole takes the largest candidate of itself and of the holes that
/// lead to it inside its group, so a group is a prefix maximum in three steps, each stopped by the pixels
/// that are not holes. Holes that reach back to their group's start take the previous group's last value
/// too; the same scan over whole groups carries it along.
[[gnu::always_inline]] inline U16 fill_vector(U16 values, U16 above_or_below, U16 left) {
  const Mask16 hole = values.is_zero();
  U16 filled = max_where(without(hole, Mask16::group_starts()), values, above_or_below);
  filled = max_where(hole, filled, filled.shifted_in_groups<1>());
  Mask16 run = hole & hole.shifted_in_groups<1>();
  filled = max_where(run, filled, filled.shifted_in_groups<2>());
  run = run & run.shifted_in_groups<2>();
  filled = max_where(run, filled, filled.shifted_in_groups<4>());
  const Mask16 from_start = run & run.shifted_in_groups<4>();

  U16 carry = left;
  if constexpr (U16::groups >= 2) {
    U16 last = filled.last_of_groups();
    Mask16 open = from_start.last_of_groups();  // groups that pass on what comes in
    if constexpr (U16::groups >= 4) {
      last = max_where(open, last, last.shifted_by_groups<1>());
      open = open & open.shifted_by_groups<1>();
      last = max_where(open, last, last.shifted_by_groups<2>());
      open = open & open.shifted_by_groups<2>();
    }
    carry = max_where(open.shifted_by_groups<1>(), last.shifted_by_groups<1>(), left);
  }
  return max_where(from_start, filled, carry);
}

/// Fills the holes among `count` pixels of a row from column x on.
template <typename Order>
[[gnu::always_inline]] inline void fill_at(std::uint16_t* row, std::size_t width, std::size_t x,
                                           std::size_t count) {
  std::uint16_t* at = row + x;
  const U16 values = Order::ranked(U16::load_first(at, count));
  const U16 above = Order::ranked(U16::load_first(at - width, count));
  const U16 below = Order::ranked(U16::load_first(at + width, count));
  // The first pixel of a row stands for its missing neighbour, which is asked for only where it is a hole.
  const U16 left = Order::ranked(U16::splat(at[x == 0 ? 0 : -1]));
  Order::ranked(fill_vector(values, max(above, below), left)).store_first(at, count);
}

/// Most vectors hold no hole. A look at a strip of them notes those that do, so that no branch depends on
/// where the holes are. Filling a vector changes no other, so what was noted stays true.
template <typename Order>
void fill_row(std::uint16_t* row, std::size_t width) {
  constexpr std::size_t kStrip = 4096;
  constexpr std::size_t kStep = 4 * kCacheLine;
  std::uint32_t with_holes[kStrip / kLanes];
  std::size_t x = 0;
  while (x + kLanes <= width) {
    const std::size_t end = x + smaller(kStrip, width - x);
    std::size_t noted = 0;
    const auto note = [&](std::size_t i) {
      with_holes[noted] = static_cast<std::uint32_t>(i);
      noted += std::size_t{Order::ranked(U16::load(row + i)).is_zero().any()};
    };
    for (; x + kStep <= end; x += kStep) {
      for (std::size_t i = 0; i < kStep; i += kCacheLine) prefetch(row + x + i, kSweepAhead);
      for (std::size_t i = 0; i < kStep; i += kLanes) note(x + i);
    }
    for (; x + kLanes <= end; x += kLanes) note(x);
    for (std::size_t i = 0; i < noted; ++i) fill_at<Order>(row, width, with_holes[i], kLanes);
  }
  if (x == width) return;
  const std::size_t rest = width - x;
  const Mask16 hole = Order::ranked(U16::load_first(row + x, rest)).is_zero() & Mask16::first(rest);
  if (hole.any()) fill_at<Order>(row, width, x, rest);
}

template <typename Order>
void fill(std::uint16_t* pixels, std::size_t width, std::size_t height) {
  for (std::size_t y = 1; y + 1 < height; ++y) fill_row<Order>(pixels + y * width, width);
}

void fill_top(std::uint16_t* pixels, std::size_t width, std::size_t height) {
  if (width < kLanes) return plain::hole_filling.top(pixels, width, height);
  if (height < 2) return;
  // Rows follow each other without gaps and a vector is no wider than a row, so the vector above is
  // always final and the image is one flat sweep. Filling a vector twice changes nothing, so the first and
  // the last may overlap their neighbours and all between them are aligned. Storing all vectors costs
  // less than choosing some.
  const auto fill_from_above = [=](std::size_t i) {
    const U16 values = U16::load(pixels + i);
    U16::load(pixels + i - width).store_where(values.is_zero(), pixels + i, values);
  };
  const std::size_t end = width * height;
  const std::size_t past_boundary =
      reinterpret_cast<std::uintptr_t>(pixels + width) / sizeof *pixels % kLanes;
  fill_from_above(width);
  sweep(
      width + (kLanes - past_boundary) % kLanes, end,
      [=](std::size_t i) { prefetch(pixels + i, kSweepAhead); }, fill_from_above);
  fill_from_above(end - kLanes);
}

void fill_smaller(std::uint16_t* pixels, std::size_t width, std::size_t height) {
  fill<KeepSmaller>(pixels, width, height);
}

void fill_larger(std::uint16_t* pixels, std::size_t width, std::size_t height) {
  fill<KeepLarger>(pixels, width, height);
}

}  // namespace

extern const HoleFillingKernels hole_filling = {fill_top, fill_smaller, fill_larger};

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL
