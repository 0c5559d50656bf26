#include "kernels/hole_filling/hole_filling.h"
#include "kernels/simd/simd.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

namespace {

constexpr std::size_t kLanes = U16::lanes;

// Both orders as "keep the larger, 0 is none": the smaller of two values is the larger of their
// complements.
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

/// Fills the flagged holes of one vector, given the mapped rows above and below and the final value to
/// the left. A hole takes the largest candidate of itself and of the holes that lead to it inside its
/// group, so a group is a prefix maximum in three steps, each stopped by the pixels that are not holes.
/// Holes that reach back to their group's start take the previous group's last value too; the same scan
/// over whole groups carries it along.
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

constexpr std::uint16_t kNothing = 0;

/// Visits the vectors of `count` pixels that hold a hole; the one at the end may be incomplete. Most
/// vectors hold none. A sweep over up to 64 of them notes those that do, so that no branch depends on
/// where the holes are.
template <typename Order, typename Visit>
void for_each_vector_with_holes(std::uint16_t* pixels, std::size_t count, Visit&& visit) {
  for (std::size_t begin = 0; begin < count; begin += 64 * kLanes) {
    const std::size_t size = count - begin < 64 * kLanes ? count - begin : 64 * kLanes;
    const std::size_t whole = size / kLanes;
    const auto has_hole = [pixels, begin](std::size_t i) {
      return std::uint64_t{Order::map(U16::load(pixels + begin + i * kLanes)).is_zero().any()};
    };
    std::uint64_t todo = 0;
    std::size_t seen = 0;
    for (; seen + 8 <= whole; seen += 8) {
      std::uint64_t eight = 0;
      for (std::size_t i = 0; i < 8; ++i) {
        if (i * kLanes % kCacheLine == 0) prefetch(pixels + begin + (seen + i) * kLanes, kSweepAhead);
        eight |= has_hole(seen + i) << i;
      }
      todo |= eight << seen;
    }
    for (; seen < whole; ++seen) todo |= has_hole(seen) << seen;
    if (const std::size_t rest = size % kLanes; rest != 0) {
      const U16 last = Order::map(U16::load_first(pixels + begin + whole * kLanes, rest));
      todo |= std::uint64_t{(last.is_zero() & Mask16::first(rest)).any()} << whole;
    }
    for (; todo != 0; todo &= todo - 1) {
      const auto i = static_cast<std::size_t>(__builtin_ctzll(todo));
      visit(pixels + begin + i * kLanes, i < whole ? kLanes : size % kLanes);
    }
  }
}

template <typename Order>
void fill_row(std::uint16_t* row, std::size_t width) {
  U16 left = U16::zero();
  const std::uint16_t* next = row;
  for_each_vector_with_holes<Order>(row, width, [&](std::uint16_t* at, std::size_t count) {
    // The last value of the vector before comes from its register or, when it held no hole, from memory.
    // Both ways are taken, so that nothing depends on a branch or on a value just stored.
    const bool follows = at == next;
    const std::uint16_t before = *(follows ? &kNothing : at - 1);
    left = max(left & U16::splat(follows ? 0xffff : 0), U16::splat(Order::map(before)));
    next = at + count;
    const U16 values = Order::map(U16::load_first(at, count));
    const U16 above = Order::map(U16::load_first(at - width, count));
    const U16 below = Order::map(U16::load_first(at + width, count));
    const Mask16 hole = values.is_zero() & Mask16::first(count);
    Order::map(fill_vector(values, above, below, hole, left)).store_first(at, count);
  });
}

template <typename Order>
void fill(std::uint16_t* pixels, std::size_t width, std::size_t height) {
  for (std::size_t y = 1; y + 1 < height; ++y) fill_row<Order>(pixels + y * width, width);
}

void fill_top(std::uint16_t* pixels, std::size_t width, std::size_t height) {
  if (width < kLanes) return plain::hole_filling.top(pixels, width, height);
  // Rows follow each other without gaps and a vector is no wider than a row, so the vector above is
  // always final and the image is one flat sweep.
  if (height < 2) return;
  for_each_vector_with_holes<Larger>(
      pixels + width, width * (height - 1), [=](std::uint16_t* at, std::size_t count) {
        const U16 values = U16::load_first(at, count);
        select(values.is_zero(), U16::load_first(at - width, count), values).store_first(at, count);
      });
}

void fill_smaller(std::uint16_t* pixels, std::size_t width, std::size_t height) {
  fill<Smaller>(pixels, width, height);
}

void fill_larger(std::uint16_t* pixels, std::size_t width, std::size_t height) {
  fill<Larger>(pixels, width, height);
}

}  // namespace

extern const HoleFillingKernels hole_filling = {fill_top, fill_smaller, fill_larger};

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL
