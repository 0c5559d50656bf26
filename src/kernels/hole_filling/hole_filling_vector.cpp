#include "kernels/hole_filling/hole_filling_vector.h"

#include "kernels/hole_filling/hole_filling_plain.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

namespace {

constexpr std::size_t kLanes = U16::lanes;

// Both orders as "keep the larger, 0 is none": the smaller of two values is the larger of their complements.
struct Larger {
  static U16 map(U16 values) { return values; }
  static std::uint16_t map(std::uint16_t value) { return value; }
};
struct Smaller {
  static U16 map(U16 values) { return complement_nonzero(values); }
  static std::uint16_t map(std::uint16_t value) {
    return value == 0 ? std::uint16_t{0} : static_cast<std::uint16_t>(65535 - value);
  }
};

/// Fills the flagged holes of one vector, given the mapped rows above and below and the final value to the
/// left. A hole takes the largest candidate of itself and of the holes that lead to it inside its group, so a
/// group is a prefix maximum in three steps, each stopped by the pixels that are not holes. Holes that reach
/// back to their group's start take the previous group's last value too; the same scan over whole groups
/// carries it along.
/// @return the filled vector; `left` becomes its last value
U16 fill_vector(U16 row, U16 above, U16 below, Mask16 hole, U16& left) {
  U16 filled = select(hole & ~Mask16::group_starts(), max(above, below), row);
  Mask16 run = hole;
  filled = max_where(run, filled, filled.shifted_in_groups<1>());
  run = run & run.shifted_in_groups<1>();
  filled = max_where(run, filled, filled.shifted_in_groups<2>());
  run = run & run.shifted_in_groups<2>();
  filled = max_where(run, filled, filled.shifted_in_groups<4>());
  const Mask16 from_start = run & run.shifted_in_groups<4>();

  U16 last = filled.last_of_groups();
  Mask16 open = from_start.last_of_groups();  // groups that pass on what comes in
  if constexpr (U16::groups >= 2) {
    last = max_where(open, last, last.shifted_by_groups<1>());
    open = open & open.shifted_by_groups<1>();
  }
  if constexpr (U16::groups >= 4) {
    last = max_where(open, last, last.shifted_by_groups<2>());
    open = open & open.shifted_by_groups<2>();
  }
  const U16 carry = max_where(open.shifted_by_groups<1>(), last.shifted_by_groups<1>(), left);
  left = max_where(open, last, left).last();
  return max_where(from_start, filled, carry);
}

template <typename Order>
void fill_row(std::uint16_t* row, std::size_t width) {
  // Most vectors hold no hole. A first sweep over up to 64 of them notes those that do, so that the second
  // one visits only these and no branch depends on where they are.
  for (std::size_t begin = 0; begin < width; begin += 64 * kLanes) {
    const std::size_t end = width - begin < 64 * kLanes ? width : begin + 64 * kLanes;
    const std::size_t whole = (end - begin) / kLanes;
    const std::size_t rest = (end - begin) % kLanes;
    std::uint64_t todo = 0;
    for (std::size_t i = 0; i < whole; ++i) {
      const Mask16 hole = Order::map(U16::load(row + begin + i * kLanes)).is_zero();
      todo |= std::uint64_t{hole.any()} << i;
    }
    if (rest != 0) todo |= std::uint64_t{1} << whole;

    U16 left = U16::zero();
    std::size_t next = ~std::size_t{0};
    for (; todo != 0; todo &= todo - 1) {
      const auto i = static_cast<std::size_t>(__builtin_ctzll(todo));
      std::uint16_t* at = row + begin + i * kLanes;
      const std::size_t count = i < whole ? kLanes : rest;
      if (i != next) left = at == row ? U16::zero() : U16::splat(Order::map(at[-1]));
      next = i + 1;
      const U16 values = Order::map(U16::load_first(at, count));
      const Mask16 hole = values.is_zero() & Mask16::first(count);
      const U16 filled = fill_vector(values, Order::map(U16::load_first(at - width, count)),
                                     Order::map(U16::load_first(at + width, count)), hole, left);
      Order::map(filled).store_first(at, count);
    }
  }
}

template <typename Order>
void fill(std::uint16_t* pixels, std::size_t width, std::size_t height) {
  for (std::size_t y = 1; y + 1 < height; ++y) fill_row<Order>(pixels + y * width, width);
}

}  // namespace

void fill_top(std::uint16_t* pixels, std::size_t width, std::size_t height) {
  if (width < kLanes) return plain::fill_top(pixels, width, height);
  // Rows follow each other without gaps and a vector is no wider than a row, so the vector above is always
  // final and the image is one flat sweep.
  const std::size_t count = width * height;
  std::size_t i = width;
  for (; i + kLanes <= count; i += kLanes) {
    const U16 values = U16::load(pixels + i);
    const Mask16 hole = values.is_zero();
    if (hole.any()) U16::load(pixels + i - width).store_where(hole, pixels + i, values);
  }
  for (; i < count; ++i) {
    if (pixels[i] == 0) pixels[i] = pixels[i - width];
  }
}

void fill_smaller(std::uint16_t* pixels, std::size_t width, std::size_t height) {
  fill<Smaller>(pixels, width, height);
}

void fill_larger(std::uint16_t* pixels, std::size_t width, std::size_t height) {
  fill<Larger>(pixels, width, height);
}

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL
