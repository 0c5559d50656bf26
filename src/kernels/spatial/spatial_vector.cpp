#include "kernels/spatial/spatial_vector.h"

#include <cstring>

#include "kernels/spatial/spatial_plain.h"
#include "kernels/spatial/spatial_plan.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

namespace {

/// Rows of a strip, one a lane; and the rows or columns that a block spans.
constexpr std::size_t kLanes = U16::lanes;
constexpr std::size_t kGroup = kSpatialGroup;

struct FixedBound {
  U16 bound;
  U16 operator()(U16 /*pixels*/) const { return bound; }
};

#if defined(FILTERPROCESSOR_LEVEL_NEON)
struct WrappedMean {
  U16 operator()(Mask16 mask, U16 previous, U16 current) const {
    return wrapped_mean_where(mask, previous, current);
  }
};
template <typename Use>
void with_blend(float /*alpha*/, unsigned /*largest*/, Use use) {
  use(WrappedMean{});
}
#else
struct Half {
  U16 operator()(Mask16 mask, U16 previous, U16 current) const {
    return mean_to_even_where(mask, previous, current);
  }
};
struct FixedPoint {
  U16 weight;
  U16 operator()(Mask16 mask, U16 previous, U16 current) const {
    return add_where(mask, current, previous, multiply_round(current - previous, weight));
  }
};
struct Floating {
  Factor previous_weight, current_weight;
  U16 operator()(Mask16 mask, U16 previous, U16 current) const {
    const PixelHalves p(previous);
    const PixelHalves c(current);
    return select(mask,
                  rounded(p.first * previous_weight + c.first * current_weight,
                          p.second * previous_weight + c.second * current_weight),
                  current);
  }
};
template <typename Use>
void with_blend(float alpha, unsigned largest, Use use) {
  const SpatialBlend blend = spatial_blend(alpha, largest);
  switch (blend.kind) {
    case SpatialBlend::Kind::half:
      return use(Half{});
    case SpatialBlend::Kind::fixed_point:
      return use(FixedPoint{U16::splat(blend.multiplier)});
    case SpatialBlend::Kind::floating:
      return use(Floating{Factor(1 - alpha), Factor(alpha)});
  }
}
#endif

/// One step of a pass, for as many rows or columns as there are lanes.
template <typename Bound, typename Blend, bool kFill>
struct Step {
  struct State {
    Pixels previous = Pixels(U16::zero());  // invalid: leaves the first pixel as it is
    U16 counter = U16::zero();
  };

  Bound bound;
  Blend blend;
  U16 radius;

  [[gnu::always_inline]] U16 operator()(State& state, U16 pixels) const {
    const Pixels current(pixels);
    const Pixels previous = state.previous;
    U16 result = blend(close(previous, current, bound(pixels)), previous.value, pixels);
    if constexpr (kFill) {
      const Mask16 hole = previous.valid() & ~current.valid();
      const Mask16 reset = previous.valid() & current.valid();
      state.counter = increment_where(hole, select(reset, U16::zero(), state.counter));
      result = select(hole & below(state.counter, radius), previous.value, result);
      state.previous = Pixels(result);
    } else {
      state.previous = current.with(result);
    }
    return result;
  }
};

struct WholeVector {
  static U16 load(const std::uint16_t* from) { return U16::load(from); }
  static void store(std::uint16_t* to, U16 values) { values.store(to); }
};

/// A vector of groups of eight that lie `step` apart in memory. Where there are fewer than a vector holds,
/// the first takes the place of the others: its values are computed and written alike, several times.
struct Groups {
  std::size_t offset[U16::groups];

  Groups(std::size_t count, std::size_t step) {
    for (std::size_t g = 0; g < U16::groups; ++g) offset[g] = g < count ? g * step : 0;
  }
  U16 load(const std::uint16_t* from) const { return U16::load_groups(from, offset); }
  void store(std::uint16_t* to, U16 values) const { values.store_groups(to, offset); }
};

/// As many rows as there are lanes, in groups of eight.
struct Strip {
  std::uint16_t* rows;
  std::size_t width;
  Groups groups;

  Strip(std::uint16_t* first, std::size_t row_width, std::size_t group_count)
      : rows(first), width(row_width), groups(group_count, kGroup * row_width) {}

  /// Eight columns as vector after vector of whatever stands there.
  [[gnu::always_inline]] void load(std::size_t x, U16 (&block)[kGroup]) const {
    for (std::size_t j = 0; j < kGroup; ++j) block[j] = groups.load(rows + j * width + x);
  }
  [[gnu::always_inline]] void store(std::size_t x, const U16 (&block)[kGroup]) const {
    for (std::size_t j = 0; j < kGroup; ++j) groups.store(rows + j * width + x, block[j]);
  }
  /// The same for fewer than eight columns; the others are 0 and go nowhere.
  void load_first(std::size_t x, std::size_t count, U16 (&block)[kGroup]) const {
    for (std::size_t j = 0; j < kGroup; ++j) {
      std::uint16_t values[kLanes] = {};
      for (std::size_t g = 0; g < U16::groups; ++g) {
        std::memcpy(values + g * kGroup, rows + j * width + x + groups.offset[g], count * sizeof *values);
      }
      block[j] = U16::load(values);
    }
  }
  void store_first(std::size_t x, std::size_t count, const U16 (&block)[kGroup]) const {
    for (std::size_t j = 0; j < kGroup; ++j) {
      std::uint16_t values[kLanes];
      block[j].store(values);
      for (std::size_t g = 0; g < U16::groups; ++g) {
        std::memcpy(rows + j * width + x + groups.offset[g], values + g * kGroup, count * sizeof *values);
      }
    }
  }
};

template <typename Bound, typename Blend, bool kFill>
struct Filter {
  using Across = Step<Bound, Blend, kFill>;
  using Along = Step<Bound, Blend, false>;

  std::uint16_t* pixels;
  std::size_t width, height;
  Across across;
  Along along;

  /// Both horizontal passes over kStrips strips. A step waits for the one before it, so several strips go
  /// side by side. On the way to the right blocks of eight columns are transposed and put back as they are;
  /// on the way to the left they are transposed again.
  template <std::size_t kStrips>
  [[gnu::noinline]] void horizontal(const Strip* strips) const {
    typename Across::State states[kStrips];
    const std::size_t last = (width - 1) / kGroup * kGroup;
    const std::size_t rest = width - last;
    U16 blocks[kStrips][kGroup];
    for (std::size_t x = 0; x < last; x += kGroup) {
      for (std::size_t s = 0; s < kStrips; ++s) {
        strips[s].load(x, blocks[s]);
        transpose_groups(blocks[s]);
      }
      for (std::size_t c = 0; c < kGroup; ++c) {
        for (std::size_t s = 0; s < kStrips; ++s) blocks[s][c] = across(states[s], blocks[s][c]);
      }
      for (std::size_t s = 0; s < kStrips; ++s) strips[s].store(x, blocks[s]);
    }
    for (std::size_t s = 0; s < kStrips; ++s) {
      turn(strips[s], last, rest, states[s]);
    }
    for (std::size_t x = last; x != 0;) {
      x -= kGroup;
      for (std::size_t s = 0; s < kStrips; ++s) strips[s].load(x, blocks[s]);
      for (std::size_t c = kGroup; c-- > 0;) {
        for (std::size_t s = 0; s < kStrips; ++s) blocks[s][c] = across(states[s], blocks[s][c]);
      }
      for (std::size_t s = 0; s < kStrips; ++s) {
        transpose_groups(blocks[s]);
        strips[s].store(x, blocks[s]);
      }
    }
  }

  /// The last block of up to eight columns, where the way to the right ends before the last column and the
  /// way to the left begins.
  [[gnu::noinline]] void turn(const Strip& strip, std::size_t x, std::size_t count,
                              typename Across::State& state) const {
    U16 block[kGroup];
    strip.load_first(x, count, block);
    transpose_groups(block);
    for (std::size_t c = 0; c + 1 < count; ++c) block[c] = across(state, block[c]);
    state = {};
    for (std::size_t c = count; c-- > 0;) block[c] = across(state, block[c]);
    transpose_groups(block);
    strip.store_first(x, count, block);
  }

  /// A vertical pass over kVectors vectors side by side, from row `first` on, `count` rows in direction
  /// `stride`. The row before `first` is what has been written last.
  template <std::size_t kVectors, typename Columns>
  [[gnu::noinline]] void vertical(std::uint16_t* first, std::ptrdiff_t stride, std::size_t count,
                                  Columns columns) const {
    typename Along::State states[kVectors];
    for (std::size_t i = 0; i < kVectors; ++i) {
      states[i].previous = Pixels(columns.load(first - stride + i * kLanes));
    }
    for (std::uint16_t* row = first; count-- != 0; row += stride) {
      for (std::size_t i = 0; i < kVectors; ++i) {
        std::uint16_t* at = row + i * kLanes;
        columns.store(at, along(states[i], columns.load(at)));
      }
    }
  }
  void vertical(std::uint16_t* row, std::ptrdiff_t stride, std::size_t count) const {
    constexpr std::size_t side_by_side = 4;
    std::size_t x = 0;
    for (; x + side_by_side * kLanes <= width; x += side_by_side * kLanes) {
      vertical<side_by_side>(row + x, stride, count, WholeVector{});
    }
    for (; x + kLanes <= width; x += kLanes) vertical<1>(row + x, stride, count, WholeVector{});
    if (const std::size_t groups = (width - x) / kGroup; groups != 0) {
      vertical<1>(row + x, stride, count, Groups(groups, kGroup));
    }
  }

  /// Rows first .. end - 1 from the top down.
  void down(std::size_t first, std::size_t end) const {
    if (first == 0) first = 1;
    if (first < end) vertical(pixels + first * width, static_cast<std::ptrdiff_t>(width), end - first);
  }
  void up() const {
    if (height < 2) return;
    vertical(pixels + (height - 2) * width, -static_cast<std::ptrdiff_t>(width), height - 1);
  }

  /// The downward pass follows the horizontal ones strip by strip, while the strips are in the cache.
  void run(bool horizontally, bool vertically) const {
    std::size_t done = 0;
    const std::size_t rows = horizontally && width >= 2 ? height / kGroup * kGroup : 0;
    while (done < rows) {
      const std::size_t left = (rows - done + kLanes - 1) / kLanes;
      const std::size_t take = left == 4 ? 2 : (left < 3 ? left : 3);
      const auto strip = [&](std::size_t i) {
        const std::size_t first = i < take ? done + i * kLanes : done;
        const std::size_t groups = (rows - first) / kGroup;
        return Strip(pixels + first * width, width, groups < U16::groups ? groups : U16::groups);
      };
      const Strip strips[3] = {strip(0), strip(1), strip(2)};
      if (take == 3) {
        horizontal<3>(strips);
      } else if (take == 2) {
        horizontal<2>(strips);
      } else {
        horizontal<1>(strips);
      }
      const std::size_t end = done + take * kLanes < rows ? done + take * kLanes : rows;
      if (vertically) down(done, end);
      done = end;
    }
    if (vertically) {
      down(done, height);
      up();
    }
  }
};

/// Calls use with the two bounds in the simplest form that has both.
template <typename Use>
void with_bounds(const SpatialBounds& inclusive, const SpatialBounds& exclusive, Use use) {
  if (inclusive.count == 1 && exclusive.count == 1) {
    use(FixedBound{U16::splat(inclusive.entries[0])}, FixedBound{U16::splat(exclusive.entries[0])});
  } else {
    use(SmallTable(inclusive.entries, inclusive.shift), SmallTable(exclusive.entries, exclusive.shift));
  }
}

/// @return false when these parameters are left to the plain form
bool filter(std::uint16_t* pixels, std::size_t width, std::size_t height, const SpatialParameters& parameters,
            bool horizontally, bool vertically) {
  const SpatialBounds inclusive =
      spatial_bounds(parameters.thresholds, Threshold::inclusive, SmallTable::capacity);
  const SpatialBounds exclusive =
      spatial_bounds(parameters.thresholds, Threshold::exclusive, SmallTable::capacity);
  if (inclusive.count == 0 || exclusive.count == 0 || parameters.alpha != parameters.alpha) return false;

  const unsigned largest = inclusive.largest > exclusive.largest ? inclusive.largest : exclusive.largest;
  with_blend(parameters.alpha, largest, [&](auto blend) {
    with_bounds(inclusive, exclusive, [&](auto across, auto along) {
      const U16 radius = U16::splat(parameters.radius);
      const auto run = [&]<bool kFill>() {
        Filter<decltype(across), decltype(blend), kFill>{
            pixels, width, height, {across, blend, radius}, {along, blend, radius}}
            .run(horizontally, vertically);
      };
      // A run's first hole already counts 1, so a radius of 1 fills nothing.
      if (horizontally && parameters.radius > 1) {
        run.template operator()<true>();
      } else {
        run.template operator()<false>();
      }
    });
  });
  return true;
}

}  // namespace

void spatial_horizontal(std::uint16_t* pixels, std::size_t width, std::size_t height,
                        const SpatialParameters& parameters) {
  if (!filter(pixels, width, height, parameters, true, false)) {
    plain::spatial_horizontal(pixels, width, height, parameters);
  }
}

void spatial_vertical(std::uint16_t* pixels, std::size_t width, std::size_t height,
                      const SpatialParameters& parameters) {
  if (!filter(pixels, width, height, parameters, false, true)) {
    plain::spatial_vertical(pixels, width, height, parameters);
  }
}

void spatial_both(std::uint16_t* pixels, std::size_t width, std::size_t height,
                  const SpatialParameters& parameters) {
  if (!filter(pixels, width, height, parameters, true, true)) {
    plain::spatial_both(pixels, width, height, parameters);
  }
}

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL
