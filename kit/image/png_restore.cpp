#include "kit/image/png_restore.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "kit/image/png_rows.h"

namespace kit {

namespace {

// In a row each pixel waits for the one to its left. So sixteen rows are restored at once, each a pixel behind the row
// above it: in every step a pixel of each, whose neighbours the steps before have made. Beyond a row's ends
// everything is 0, as the filters want it.
constexpr std::size_t kLanes = 8;
constexpr std::size_t kHalves = 2;  // vectors whose work overlaps
constexpr std::size_t kRows = kHalves * kLanes;
constexpr std::size_t kSteps = 8;  // for which differences are taken and pixels are written together
using Pixels [[gnu::vector_size(16)]] = std::uint16_t;  // one of each row, or a row's in each step
using Lanes [[gnu::vector_size(16)]] = std::uint8_t;    // their bytes, as they stand in a file
using Block = std::array<Pixels, kSteps>;

/// Rows of steps to steps of rows, and back.
void transpose(Block& block) {
  for (int round = 0; round < 3; ++round) {
    const Block from = block;
    for (std::size_t i = 0; i < kSteps / 2; ++i) {
      const Pixels a = from[i], b = from[i + kSteps / 2];
      block[2 * i] = __builtin_shufflevector(a, b, 0, 8, 1, 9, 2, 10, 3, 11);
      block[2 * i + 1] = __builtin_shufflevector(a, b, 4, 12, 5, 13, 6, 14, 7, 15);
    }
  }
}

template <typename Integers>
Integers swap_bytes(Integers pixels) {
  if (std::endian::native == std::endian::big) return pixels;
  return static_cast<Integers>(pixels << 8 | pixels >> 8);
}

/// The neighbour that is nearest to left + above - corner; the first of them where two are.
Lanes paeth(Lanes left, Lanes above, Lanes corner) {
  const Lanes low = left < above ? left : above, high = left < above ? above : left;
  // How far that sum is from either where the corner is between them. Where it isn't, the other one is nearest.
  const Lanes to_low = (high > corner ? high : corner) - corner;
  const Lanes to_high = corner - (low < corner ? low : corner);
  const Lanes near = to_low < to_high ? to_low : to_high, far = to_low < to_high ? to_high : to_low;
  const Lanes side = near == to_low ? low : high;
  return far - near < near ? corner : side;
}

/// Half of the rows at work.
class Half {
 public:
  void set(std::size_t lane, unsigned char filter) { filters_[filter][lane] = 0xFFFF; }

  /// The pixels of a step from their differences.
  /// @param first above all others, and 0
  template <bool with_paeth>
  Pixels restore(Pixels differences, Pixels first) {
    const Lanes above = reinterpret_cast<Lanes>(
        __builtin_shufflevector(pixels(), Pixels{}, 8, 0, 1, 2, 3, 4, 5, 6) | first);
    const Lanes half = (left_ & above) + ((left_ ^ above) >> 1);
    Lanes guess =
        (left_ & of(RowFilter::sub)) | (above & of(RowFilter::up)) | (half & of(RowFilter::average));
    if constexpr (with_paeth) guess |= paeth(left_, above, corner_) & of(RowFilter::paeth);
    corner_ = above;
    left_ = reinterpret_cast<Lanes>(differences) + guess;
    return pixels();
  }

  /// What the last restored is above.
  Pixels last() const { return __builtin_shufflevector(pixels(), Pixels{}, 7, 8, 8, 8, 8, 8, 8, 8); }

 private:
  Pixels pixels() const { return reinterpret_cast<Pixels>(left_); }
  Lanes of(RowFilter filter) const {
    return reinterpret_cast<Lanes>(filters_[static_cast<std::size_t>(filter)]);
  }

  std::array<Pixels, 5> filters_{};  // all ones in the lanes of the rows with each
  Lanes left_{}, corner_{};          // of the next step's pixels
};

class Group {
 public:
  /// @param above the row above, as it stands in a file, and zeros for the steps after its end
  Group(ByteView rows, std::size_t width, const std::uint16_t* above, std::uint16_t* to)
      : rows_(rows.data()),
        width_(width),
        count_(std::min(kRows, rows.size() / stride())),
        above_(above),
        to_(to) {}

  bool restore() {
    bool with_paeth = false;
    for (std::size_t row = 0; row < count_; ++row) {
      const unsigned char filter = rows_[row * stride()];
      constexpr auto last = static_cast<unsigned char>(RowFilter::paeth);
      if (filter > last) return false;
      halves_[row / kLanes].set(row % kLanes, filter);
      with_paeth = with_paeth || filter == last;
    }
    with_paeth ? restore_steps<true>() : restore_steps<false>();
    return true;
  }

 private:
  std::size_t stride() const { return 1 + 2 * width_; }

  template <bool with_paeth>
  void restore_steps() {
    std::array<Half, kHalves> halves = halves_;
    for (std::size_t step = 0; step < width_ + count_ - 1; step += kSteps) {
      std::array<Block, kHalves> blocks{};
      const bool inside = count_ == kRows && step + 1 >= kRows && step + kSteps <= width_;
      for (std::size_t row = 0; row < count_; ++row)
        take(row, step, inside, blocks[row / kLanes][row % kLanes]);
      for (Block& block : blocks) transpose(block);
      for (std::size_t i = 0; i < kSteps; ++i) {
        blocks[1][i] = halves[1].template restore<with_paeth>(blocks[1][i], halves[0].last());
        blocks[0][i] = halves[0].template restore<with_paeth>(blocks[0][i], Pixels{above_[step + i]});
      }
      for (Block& block : blocks) transpose(block);
      for (std::size_t row = 0; row < count_; ++row)
        put(row, step, inside, swap_bytes(blocks[row / kLanes][row % kLanes]));
    }
  }

  void take(std::size_t row, std::size_t step, bool inside, Pixels& pixels) const {
    const unsigned char* const from = rows_ + row * stride() + 1;
    if (inside) {
      std::memcpy(&pixels, from + 2 * (step - row), sizeof pixels);
      return;
    }
    const std::size_t begin = std::max(step, row), end = std::min(step + kSteps, width_ + row);
    for (std::size_t at = begin; at < end; ++at) {
      std::uint16_t pixel;
      std::memcpy(&pixel, from + 2 * (at - row), sizeof pixel);
      pixels[at - step] = pixel;
    }
  }

  void put(std::size_t row, std::size_t step, bool inside, const Pixels& pixels) {
    std::uint16_t* const to = to_ + row * width_;
    if (inside) {
      std::memcpy(to + (step - row), &pixels, sizeof pixels);
      return;
    }
    const std::size_t begin = std::max(step, row), end = std::min(step + kSteps, width_ + row);
    for (std::size_t at = begin; at < end; ++at) to[at - row] = pixels[at - step];
  }

  const unsigned char* rows_;
  std::size_t width_;
  std::size_t count_;
  const std::uint16_t* above_;
  std::uint16_t* to_;
  std::array<Half, kHalves> halves_{};
};

}  // namespace

bool restore_rows(ByteView rows, Image& image) {
  const std::size_t width = image.width, stride = 1 + 2 * width;
  std::vector<std::uint16_t> above(width + kRows + kSteps);
  for (std::size_t y = 0; y < image.height; y += kRows) {
    std::uint16_t* const to = image.pixels.data() + y * width;
    if (y > 0) std::transform(to - width, to, above.begin(), swap_bytes<std::uint16_t>);
    if (!Group(rows.subspan(y * stride), width, above.data(), to).restore()) return false;
  }
  return true;
}

}  // namespace kit
