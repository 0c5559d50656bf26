#include <cstring>

#include "kernels/resize/resize.h"
#include "kernels/simd/simd.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

namespace {

/// Columns whose picks are worked out at a time: they stay in the first-level cache for all rows.
constexpr std::size_t kStrip = 2048;

void clear(std::uint16_t* from, std::size_t count) { std::memset(from, 0, count * sizeof *from); }
void copy(const std::uint16_t* from, std::uint16_t* to, std::size_t count) {
  std::memcpy(to, from, count * sizeof *from);
}

/// How many target positions from the first on lie inside the source. The counter must not wrap.
std::size_t positions_inside(const ResizeAxis& axis) {
  const std::size_t wanted = axis.end - axis.first;
  const std::size_t limit = axis.source_size << 16;
  if (axis.start >= limit) return 0;
  const std::size_t inside = (limit - axis.start + axis.step - 1) / axis.step;
  return inside < wanted ? inside : wanted;
}

bool wraps(const ResizeAxis& axis) {
  return axis.first < axis.end && axis.start + (axis.end - axis.first - 1) * axis.step > 0xffffffffu;
}

/// Whether `count` target positions, at least 1, take consecutive source positions.
bool consecutive(const ResizeAxis& axis, std::size_t count) {
  return axis.source(axis.first + count - 1) - axis.source(axis.first) == count - 1;
}

/// A range of columns of the image, inside the source.
struct Strip {
  const std::uint16_t* source;
  const ResizeAxis& columns;
  const ResizeAxis& rows;
  std::uint16_t* target;
  std::size_t first;
  std::size_t count;

  /// Calls fill(source row, target row from the strip's first column on) for all rows but those that
  /// repeat the one above, which are copied.
  template <typename Fill>
  void each_row(Fill fill) const {
    std::size_t above = rows.source_size;
    for (std::size_t r = rows.first; r < rows.end; ++r) {
      std::uint16_t* to = target + r * columns.target_size + first;
      const std::size_t y = rows.source(r);
      if (y >= rows.source_size) {
        clear(to, count);
      } else if (y == above) {
        copy(to - columns.target_size, to, count);
      } else {
        fill(source + y * columns.source_size, to);
      }
      above = y;
    }
  }

  void copy_rows() const {
    const std::size_t x = columns.source(first);
    each_row([&](const std::uint16_t* from, std::uint16_t* to) { copy(from + x, to, count); });
  }

  void step_through() const {
    const std::uint32_t start =
        columns.start + static_cast<std::uint32_t>(first - columns.first) * columns.step;
    each_row([&](const std::uint16_t* from, std::uint16_t* to) {
      std::uint32_t counter = start;
      for (std::size_t c = 0; c < count; ++c, counter += columns.step) to[c] = from[counter >> 16];
    });
  }

  /// False, with nothing done, where `reach` source pixels do not suffice.
  template <typename Picker>
  bool pick() const {
    constexpr std::size_t lanes = Picker::lanes;
    const std::size_t span = ((lanes - 1) * columns.step >> 16) + 2;
    if (span > Picker::reach || columns.source_size < Picker::reach || count < lanes) return false;

    Picker pickers[kStrip / lanes];
    std::size_t origins[kStrip / lanes];
    // The last picker overlaps the one before it rather than leave a remainder.
    const std::size_t last = count - lanes;
    const std::size_t full = last / lanes + (last % lanes != 0);
    for (std::size_t i = 0; i <= full; ++i) {
      const std::size_t offset = i < full ? i * lanes : last;
      const std::uint32_t counter =
          columns.start + static_cast<std::uint32_t>(first - columns.first + offset) * columns.step;
      const std::size_t x = counter >> 16;
      const std::size_t room = columns.source_size - Picker::reach;
      origins[i] = x < room ? x : room;
      const auto skipped = static_cast<std::uint32_t>(x - origins[i]);
      std::uint16_t positions[lanes];
      for (std::uint32_t j = 0; j < lanes; ++j) {
        const std::uint32_t advance = (counter & 0xffff) + j * columns.step;
        positions[j] = static_cast<std::uint16_t>((advance >> 16) + skipped);
      }
      pickers[i] = Picker::of(positions);
    }
    each_row([&](const std::uint16_t* from, std::uint16_t* to) {
      for (std::size_t i = 0; i < full; ++i) pickers[i].pick(from + origins[i], to + i * lanes);
      pickers[full].pick(from + origins[full], to + last);
    });
    return true;
  }
};

void resize_image(const std::uint16_t* source, const ResizeAxis& columns, const ResizeAxis& rows,
                  std::uint16_t* target) {
  if (wraps(columns)) return plain::resize.resize(source, columns, rows, target);

  const std::size_t width = columns.target_size;
  const std::size_t count = positions_inside(columns);
  const std::size_t height = rows.end - rows.first;
  std::uint16_t* const first_row = target + rows.first * width;
  clear(target, rows.first * width);
  clear(target + rows.end * width, (rows.target_size - rows.end) * width);
  if (count < width) {
    for (std::size_t r = 0; r < height; ++r) {
      std::uint16_t* row = first_row + r * width;
      clear(row, columns.first);
      clear(row + columns.first + count, width - columns.first - count);
    }
  }
  if (count == 0 || height == 0) return;

  if (consecutive(columns, count)) {
    const bool all_rows = !wraps(rows) && positions_inside(rows) == height && consecutive(rows, height);
    if (all_rows && count == width && count == columns.source_size) {
      return copy(source + rows.source(rows.first) * width, first_row, width * height);
    }
    return Strip{source, columns, rows, target, columns.first, count}.copy_rows();
  }
  for (std::size_t done = 0; done < count; done += kStrip) {
    const std::size_t part = count - done < kStrip ? count - done : kStrip;
    const Strip strip = {source, columns, rows, target, columns.first + done, part};
    if (!strip.pick<Picker<1>>() && !strip.pick<Picker<2>>() && !strip.pick<Picker<4>>()) {
      strip.step_through();
    }
  }
}

}  // namespace

extern const ResizeKernels resize = {resize_image};

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL
