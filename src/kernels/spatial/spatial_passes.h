/// The passes in vector form: rows are lanes in horizontal passes, columns in vertical ones.
#ifndef FILTERPROCESSOR_KERNELS_SPATIAL_SPATIAL_PASSES_H
#define FILTERPROCESSOR_KERNELS_SPATIAL_SPATIAL_PASSES_H

#include <cstring>
#include <utility>

#include "kernels/simd/simd.h"
#include "kernels/spatial/spatial.h"

#define FILTERPROCESSOR_INLINE __attribute__((always_inline))

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

namespace {

/// Lanes of a vector, and the rows or columns that come in a group.
constexpr std::size_t kLanes = U16::lanes;
constexpr std::size_t kGroup = kSpatialGroup;

/// A constant that a lambda can take for an index.
template <std::size_t value>
struct Index {
  constexpr operator std::size_t() const { return value; }
};

/// Calls use with 0 .. count - 1, unrolled: what is indexed by them can live in registers.
template <std::size_t... index, typename Use>
[[gnu::always_inline]] inline void repeat(std::index_sequence<index...> /*indices*/, Use use) {
  (use(Index<index>()), ...);
}
template <std::size_t count, typename Use>
[[gnu::always_inline]] inline void repeat(Use use) {
  repeat(std::make_index_sequence<count>(), use);
}

struct WholeVector {
  static U16 load(const std::uint16_t* from) { return U16::load(from); }
  static void store(std::uint16_t* to, U16 values) { values.store(to); }
};

/// A vector of groups of eight that lie `step` apart in memory. Where there are fewer than a vector
/// holds, the first takes the place of the others: its values are computed and written alike, several
/// times.
struct Groups {
  std::size_t offset[U16::groups];

  Groups(std::size_t count, std::size_t step) {
    for (std::size_t g = 0; g < U16::groups; ++g) offset[g] = g < count ? g * step : 0;
  }
  U16 load(const std::uint16_t* from) const { return U16::load_groups(from, offset); }
  void store(std::uint16_t* to, U16 values) const { values.store_groups(to, offset); }
};

/// As many rows as there are lanes.
struct Strip {
  std::uint16_t* rows;
  std::size_t width;
  Groups groups;

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

/// Where the vectors of columns wait between the passes: from `first` on, `step()` apart.
template <typename Step>
struct Waiting {
  std::uint16_t* first;
  Step step;

  [[gnu::always_inline]] void put(const U16 (&block)[kGroup]) const {
    repeat<kGroup>([&](auto c) FILTERPROCESSOR_INLINE { block[c].store(first + c * step); });
  }
  [[gnu::always_inline]] void get(U16 (&block)[kGroup]) const {
    repeat<kGroup>([&](auto c) FILTERPROCESSOR_INLINE { block[c] = U16::load(first + c * step); });
  }
};

/// The horizontal passes.
template <typename Step>
struct Horizontal {
  // A step waits for the one before it, so two strips go side by side; more gain nothing.
  static constexpr std::size_t kSideBySide = 2;
  static constexpr std::size_t kStackBytes = 40960;

  std::uint16_t* pixels;
  std::size_t width, height;
  Step step;

  /// Rows from `first` on, as many as go side by side.
  /// @return the end of these rows, or `first` when there are none left
  std::size_t filter_from(std::size_t first) const {
    const std::size_t rows = width < 2 ? 0 : height / kGroup * kGroup;
    if (first >= rows) return first;
    std::uint16_t* top = pixels + first * width;
    if (rows - first >= kSideBySide * kLanes) {
      filter<kSideBySide, true>(top, Groups(U16::groups, kGroup * width));
      return first + kSideBySide * kLanes;
    }
    const std::size_t end = rows - first < kLanes ? rows : first + kLanes;
    filter<1, false>(top, Groups((end - first) / kGroup, kGroup * width));
    return end;
  }

 private:
  /// Both horizontal passes over kStrips strips side by side. On the way to the right blocks of eight
  /// columns are transposed and put away as they are; on the way to the left they are transposed again.
  /// @tparam kTiles  whether all groups are the strip's own, so that blocks may wait in tiles
  template <std::size_t kStrips, bool kTiles>
  [[gnu::noinline]] void filter(std::uint16_t* rows, Groups groups) const {
    typename Step::State states[kStrips];
    U16 blocks[kStrips][kGroup];
    const auto strip = [&](std::size_t s) { return Strip{rows + s * kLanes * width, width, groups}; };
    const auto to_right = [&](std::size_t x) FILTERPROCESSOR_INLINE {
      repeat<kStrips>([&](auto s) FILTERPROCESSOR_INLINE {
        strip(s).load(x, blocks[s]);
        transpose_groups(blocks[s]);
      });
      repeat<kGroup>([&](auto c) FILTERPROCESSOR_INLINE {
        repeat<kStrips>([&](auto s)
                            FILTERPROCESSOR_INLINE { blocks[s][c] = step(states[s], blocks[s][c]); });
      });
    };
    const auto to_left = [&](std::size_t x) FILTERPROCESSOR_INLINE {
      repeat<kGroup>([&](auto i) FILTERPROCESSOR_INLINE {
        constexpr std::size_t c = kGroup - 1 - i;
        repeat<kStrips>([&](auto s)
                            FILTERPROCESSOR_INLINE { blocks[s][c] = step(states[s], blocks[s][c]); });
      });
      repeat<kStrips>([&](auto s) FILTERPROCESSOR_INLINE {
        transpose_groups(blocks[s]);
        strip(s).store(x, blocks[s]);
      });
    };

    // Between the passes whole vectors wait, which are quicker than the pieces of blocks: those of the first
    // columns on the stack, which stays small, and those of later tiles in the image, in the place of the
    // tile to their left, which has been read. Where a vector is one group, blocks are whole vectors.
    constexpr bool kUseTiles = kTiles && U16::groups > 1;
    const std::size_t last = (width - 1) / kGroup * kGroup;
    const std::size_t tiles_end = kUseTiles ? last / kLanes * kLanes : 0;
    constexpr std::size_t kOnStack =
        kUseTiles ? kStackBytes / sizeof(U16) / kStrips / kLanes * kLanes : 0;
    alignas(64) std::uint16_t stack[kUseTiles ? kStrips * kOnStack * kLanes : 1];
    const std::size_t stack_end = tiles_end < kOnStack ? tiles_end : kOnStack;
    const auto on_stack = [&](std::size_t s, std::size_t x) FILTERPROCESSOR_INLINE {
      return Waiting<Index<kLanes>>{stack + (x * kStrips + s * kGroup) * kLanes, {}};
    };
    const auto in_image = [&](std::size_t s, std::size_t x) FILTERPROCESSOR_INLINE {
      const std::size_t tile = x / kLanes * kLanes;
      return Waiting<std::size_t>{strip(s).rows + (x - tile) * width + tile - kLanes, width};
    };
    const auto go_right = [&](std::size_t x, auto waiting) FILTERPROCESSOR_INLINE {
      to_right(x);
      repeat<kStrips>([&](auto s) FILTERPROCESSOR_INLINE { waiting(s, x).put(blocks[s]); });
    };
    const auto go_left = [&](std::size_t x, auto waiting) FILTERPROCESSOR_INLINE {
      repeat<kStrips>([&](auto s) FILTERPROCESSOR_INLINE { waiting(s, x).get(blocks[s]); });
      to_left(x);
    };
    for (std::size_t x = 0; x < stack_end; x += kGroup) go_right(x, on_stack);
    for (std::size_t x = stack_end; x < tiles_end; x += kGroup) go_right(x, in_image);
    for (std::size_t x = tiles_end; x < last; x += kGroup) {
      to_right(x);
      repeat<kStrips>([&](auto s) FILTERPROCESSOR_INLINE { strip(s).store(x, blocks[s]); });
    }
    for (std::size_t s = 0; s < kStrips; ++s) states[s] = turn(strip(s), last, states[s]);
    for (std::size_t x = last; x != tiles_end;) {
      x -= kGroup;
      repeat<kStrips>([&](auto s) FILTERPROCESSOR_INLINE { strip(s).load(x, blocks[s]); });
      to_left(x);
    }
    for (std::size_t x = tiles_end; x > stack_end; x -= kGroup) go_left(x - kGroup, in_image);
    for (std::size_t x = stack_end; x != 0; x -= kGroup) go_left(x - kGroup, on_stack);
  }

  /// The last block of up to eight columns, where the way to the right ends before the last column and
  /// the way to the left begins.
  [[gnu::noinline]] typename Step::State turn(Strip strip, std::size_t x,
                                              typename Step::State state) const {
    const std::size_t count = width - x;
    U16 block[kGroup];
    strip.load_first(x, count, block);
    transpose_groups(block);
    for (std::size_t c = 0; c + 1 < count; ++c) block[c] = step(state, block[c]);
    state = {};
    for (std::size_t c = count; c-- > 0;) block[c] = step(state, block[c]);
    transpose_groups(block);
    strip.store_first(x, count, block);
    return state;
  }
};

/// The vertical passes.
template <typename Step>
struct Vertical {
  std::uint16_t* pixels;
  std::size_t width, height;
  Step step;

  /// Rows first .. end - 1 from the top down.
  void down(std::size_t first, std::size_t end) const {
    if (first == 0) first = 1;
    if (first < end) filter(pixels + first * width, static_cast<std::ptrdiff_t>(width), end - first);
  }
  void up() const {
    if (height < 2) return;
    filter(pixels + (height - 2) * width, -static_cast<std::ptrdiff_t>(width), height - 1);
  }

 private:
  /// A vertical pass over kVectors vectors side by side, from row `first` on, `count` rows in direction
  /// `stride`. The row before `first` is what has been written last.
  template <std::size_t kVectors, typename Columns>
  [[gnu::noinline]] void filter(std::uint16_t* first, std::ptrdiff_t stride, std::size_t count,
                                Columns columns) const {
    typename Step::State states[kVectors];
    for (std::size_t i = 0; i < kVectors; ++i) {
      states[i].previous = Pixels(columns.load(first - stride + i * kLanes));
    }
    for (std::size_t y = 0; y < count; ++y) {
      std::uint16_t* row = first + static_cast<std::ptrdiff_t>(y) * stride;
      repeat<kVectors>([&](auto i) FILTERPROCESSOR_INLINE {
        std::uint16_t* at = row + i * kLanes;
        columns.store(at, step(states[i], columns.load(at)));
      });
    }
  }

  void filter(std::uint16_t* row, std::ptrdiff_t stride, std::size_t count) const {
    std::size_t x = 0;
    for (; x + 8 * kLanes <= width; x += 8 * kLanes) filter<8>(row + x, stride, count, WholeVector{});
    for (; x + 2 * kLanes <= width; x += 2 * kLanes) filter<2>(row + x, stride, count, WholeVector{});
    for (; x + kLanes <= width; x += kLanes) filter<1>(row + x, stride, count, WholeVector{});
    if (const std::size_t groups = (width - x) / kGroup; groups != 0) {
      filter<1>(row + x, stride, count, Groups(groups, kGroup));
    }
  }
};

}  // namespace

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL

#endif
