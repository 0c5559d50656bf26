#include "kernels/margin/margin.h"
#include "kernels/simd/simd.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

namespace {

constexpr std::size_t kLanes = U16::lanes;
constexpr std::size_t kWindow = 32;  // columns searched at once
constexpr std::size_t kBatch = 32;   // rows that stay in the nearest cache
constexpr std::size_t kMostBandRows = 2048;
static_assert(kWindow >= kLanes && kMostBandRows >= kBatch);

/// A margin seen from its border. Pixels of a line count from the border inwards, and the line's gap is
/// the number of zeros before its first valid pixel, so all four borders follow one rule.
struct Border {
  std::size_t band;    ///< a gap below this starts a run
  std::size_t end;     ///< no run goes further
  std::size_t margin;  ///< length of a run

  /// @param length  pixels of a line
  Border(std::size_t length, std::int64_t start_band, std::int32_t run_length, bool clipped)
      : band(clamped(start_band, length)),
        end(clipped ? band : length),
        margin(clamped(run_length, end)) {}

  /// How much of a run of `length` pixels behind a gap is cleared.
  std::size_t run(std::size_t gap, std::size_t length) const {
    return gap < band ? smaller(length, end - gap) : 0;
  }

 private:
  static std::size_t clamped(std::int64_t value, std::size_t most) {
    return value > 0 ? smaller(static_cast<std::size_t>(value), most) : 0;
  }
};

/// Bit i: whether pixel i of 32 is valid.
std::uint32_t valid_bits(const std::uint16_t* pixels) {
  Mask16 zero[kWindow / kLanes];
  for (std::size_t i = 0; i < kWindow / kLanes; ++i) zero[i] = U16::load(pixels + i * kLanes).is_zero();
  return ~bits_of(zero);
}

/// The gap at one side of a row of a window or more; any number from `band` on when it is not below
/// `band`. The last window may begin among pixels that are known to be 0.
std::size_t left_gap(const std::uint16_t* row, std::size_t width, std::size_t band) {
  for (std::size_t at = 0; at < band; at += kWindow) {
    const std::size_t start = smaller(at, width - kWindow);
    const std::uint32_t valid = valid_bits(row + start);
    if (valid != 0) return start + static_cast<std::size_t>(__builtin_ctz(valid));
  }
  return width;
}

std::size_t right_gap(const std::uint16_t* row, std::size_t width, std::size_t band) {
  for (std::size_t at = 0; at < band; at += kWindow) {
    const std::size_t start = smaller(at, width - kWindow);
    const std::uint32_t valid = valid_bits(row + (width - kWindow - start));
    if (valid != 0) return start + static_cast<std::size_t>(__builtin_clz(valid));
  }
  return width;
}

struct Gaps {
  std::uint32_t left, right;
};

/// The margins of rows. Gaps, left runs and right runs have loops of their own, which keeps each short.
struct Rows {
  std::uint16_t* pixels;
  std::size_t width;
  Border left, right;
  const std::uint16_t* chamfer;

  void find(std::size_t y, std::size_t count, Gaps* gaps) const {
    const std::uint16_t* row = pixels + y * width;
    for (std::size_t i = 0; i < count; ++i, row += width) {
      gaps[i].left = static_cast<std::uint32_t>(left_gap(row, width, left.band));
      gaps[i].right = static_cast<std::uint32_t>(right_gap(row, width, right.band));
    }
  }
  void clear(std::size_t y, std::size_t count, const Gaps* gaps) const {
    std::uint16_t* const row = pixels + y * width;
    if (chamfer != nullptr) {
      const std::uint16_t* const pairs = chamfer + 2 * y;
      clear_left(row, count, gaps, [=](std::size_t i) -> std::size_t { return pairs[2 * i]; });
      clear_right(row, count, gaps, [=](std::size_t i) -> std::size_t { return pairs[2 * i + 1]; });
    } else {
      clear_left(row, count, gaps, [this](std::size_t) { return left.margin; });
      clear_right(row, count, gaps, [this](std::size_t) { return right.margin; });
    }
  }

 private:
  template <typename MarginOf>
  void clear_left(std::uint16_t* row, std::size_t count, const Gaps* gaps, MarginOf margin_of) const {
    for (std::size_t i = 0; i < count; ++i, row += width) {
      const std::size_t gap = gaps[i].left;
      set_run(row + gap, left.run(gap, margin_of(i)), U16::zero());
    }
  }
  template <typename MarginOf>
  void clear_right(std::uint16_t* row, std::size_t count, const Gaps* gaps, MarginOf margin_of) const {
    for (std::size_t i = 0; i < count; ++i, row += width) {
      const std::size_t gap = gaps[i].right;
      const std::size_t run = right.run(gap, margin_of(i));
      set_run(row + (width - gap - run), run, U16::zero());
    }
  }
};

/// Clears the runs of a vector's flagged columns at one border.
/// @param pixels  the vector at the border; the next one inwards is `step` pixels on
void clear_columns(std::uint16_t* pixels, std::ptrdiff_t step, const Border& border, Mask16 columns) {
  const U16 margin = U16::splat(static_cast<std::uint16_t>(border.margin));
  U16 cleared = select(columns, U16::zero(), margin);
  Mask16 in_gap = columns;
  for (std::ptrdiff_t i = 0; i < static_cast<std::ptrdiff_t>(border.band); ++i) {
    const Mask16 open = differ(cleared, margin);
    if (!open.any()) return;
    const U16 values = U16::load(pixels + i * step);
    in_gap = in_gap & values.is_zero();
    const Mask16 run = without(open, in_gap);
    U16::zero().store_where(run, pixels + i * step, values);
    cleared = increment_where(run, cleared);
  }
}

/// Clears the margins of columns. What is cleared at the top does not matter at the bottom: it leaves the
/// last valid pixel of a column as it is, or all of the column's pixels 0.
void clear_columns(std::uint16_t* pixels, std::size_t width, std::size_t height, const Border& top,
                   const Border& bottom) {
  const auto step = static_cast<std::ptrdiff_t>(width);
  for (std::size_t x = 0; x < width; x += kLanes) {
    // The last vector begins among columns that are done.
    const std::size_t start = smaller(x, width - kLanes);
    const Mask16 columns = ~Mask16::first(x - start);
    clear_columns(pixels + start, step, top, columns);
    clear_columns(pixels + (height - 1) * width + start, -step, bottom, columns);
  }
}

bool clear_margins(std::uint16_t* pixels, std::int32_t width, std::int32_t height,
                   const MarginRule& rule) {
  const auto columns = static_cast<std::size_t>(width);
  const auto rows = static_cast<std::size_t>(height);
  const bool clipped = rule.chamfer != nullptr;
  // The far bands are one pixel shorter.
  const std::int64_t limit_y = rule.margin_y > 0 ? rule.limit_y : 0;
  const Border top(rows, limit_y, rule.margin_y, true);
  const Border bottom(rows, limit_y - 1, rule.margin_y, true);
  const Border left(columns, rule.limit_x, rule.left, clipped);
  const Border right(columns, std::int64_t{rule.limit_x} - 1, rule.right, clipped);
  const std::size_t band_rows = smaller(top.band + bottom.band, rows);
  if (columns < kWindow || band_rows > kMostBandRows) {
    return plain::margin.clear(pixels, width, height, rule);
  }
  const Rows margins = {pixels, columns, left, right, rule.chamfer};

  // Only the rows of the vertical bands matter to both directions. Their gaps are found before and
  // cleared after the columns, so that each direction sees the image as it was.
  Gaps gaps[kMostBandRows];
  Gaps* const bottom_gaps = gaps + top.band;
  const std::size_t bottom_rows = band_rows - top.band;  // those of the bottom band that the top lacks
  const std::size_t bottom_begin = rows - bottom_rows;
  margins.find(0, top.band, gaps);
  margins.find(bottom_begin, bottom_rows, bottom_gaps);
  clear_columns(pixels, columns, rows, top, bottom);
  margins.clear(0, top.band, gaps);
  margins.clear(bottom_begin, bottom_rows, bottom_gaps);

  for (std::size_t y = top.band; y < bottom_begin; y += kBatch) {
    const std::size_t count = smaller(kBatch, bottom_begin - y);
    margins.find(y, count, gaps);
    margins.clear(y, count, gaps);
  }
  return true;
}

}  // namespace

extern const MarginKernels margin = {clear_margins};

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL
