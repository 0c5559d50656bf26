/// Which neighbours a pixel joins, for 64 pixels at a time.
#ifndef FILTERPROCESSOR_KERNELS_SPECKLE_SPECKLE_LINKS_H
#define FILTERPROCESSOR_KERNELS_SPECKLE_SPECKLE_LINKS_H

#include "kernels/simd/simd.h"
#include "kernels/speckle/speckle_rules.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {
namespace {

inline constexpr std::size_t kWordBits = 64;

/// A bit for each of 64 pixels: whether it is valid, and whether its neighbour's value, valid or not,
/// lies within its own threshold. `right` and `down` only where thresholds differ between pixels.
struct LinkBits {
  std::uint64_t valid, left, up, right, down;
};

/// 64 pixels and their neighbours, each 64 values that can be read.
struct Neighbourhood {
  const std::uint16_t* center;
  const std::uint16_t* left;
  const std::uint16_t* up;
  const std::uint16_t* right;
  const std::uint16_t* down;
};

/// One threshold for all values.
class UniformThreshold {
 public:
  static constexpr bool symmetric = true;
  explicit UniformThreshold(std::int32_t max_diff)
      : value_(U16::splat(static_cast<std::uint16_t>(max_diff < 65535 ? max_diff : 65535))) {}
  U16 of(U16) const { return value_; }

 private:
  U16 value_;
};

/// Thresholds from a table that fits a vector.
class ShortTableThreshold {
 public:
  static constexpr bool symmetric = false;
  explicit ShortTableThreshold(const TableThreshold& table)
      : table_(table.entries, table.shift),
        low_byte_(U16::splat(static_cast<std::uint16_t>(0xffu << table.shift))) {}
  U16 of(U16 values) const { return table_(values & low_byte_); }

 private:
  SmallTable table_;
  U16 low_byte_;  // of a shifted value, where it stands in the value
};

/// Thresholds from any table.
class LongTableThreshold {
 public:
  static constexpr bool symmetric = false;
  explicit LongTableThreshold(const TableThreshold& table) : table_(table) {}
  U16 of(U16 values) const {
    alignas(64) std::uint16_t lanes[U16::lanes];
    values.store(lanes);
    for (std::uint16_t& lane : lanes) lane = static_cast<std::uint16_t>(table_(lane));
    return U16::load(lanes);
  }

 private:
  const TableThreshold& table_;
};

/// The values that lie within a threshold of a center: from `low`, `span` wide.
struct Reach {
  U16 low;
  U16 span;
  Reach(U16 center, U16 threshold)
      : low(subtract_saturated(center, threshold)), span(add_saturated(center, threshold) - low) {}
  Mask16 holds(U16 values) const { return at_most(values - low, span); }
};

template <typename Threshold>
[[gnu::always_inline]] inline LinkBits link_bits(const Neighbourhood& at, const Threshold& threshold,
                                                 U16 invalid) {
  LinkBits bits{};
  // By halves, whose masks fit in registers.
  constexpr std::size_t half = kWordBits / 2;
  for (std::size_t first = 0; first < kWordBits; first += half) {
    constexpr std::size_t parts = half / U16::lanes;
    Mask16 hole[parts], left[parts], up[parts], right[parts], down[parts];
    for (std::size_t i = 0; i < parts; ++i) {
      const std::size_t x = first + i * U16::lanes;
      const U16 center = U16::load(at.center + x);
      const Reach reach(center, threshold.of(center));
      hole[i] = equal(center, invalid);
      left[i] = reach.holds(U16::load(at.left + x));
      up[i] = reach.holds(U16::load(at.up + x));
      if constexpr (!Threshold::symmetric) {
        right[i] = reach.holds(U16::load(at.right + x));
        down[i] = reach.holds(U16::load(at.down + x));
      }
    }
    bits.valid |= std::uint64_t{~bits_of(hole)} << first;
    bits.left |= std::uint64_t{bits_of(left)} << first;
    bits.up |= std::uint64_t{bits_of(up)} << first;
    if constexpr (!Threshold::symmetric) {
      bits.right |= std::uint64_t{bits_of(right)} << first;
      bits.down |= std::uint64_t{bits_of(down)} << first;
    }
  }
  return bits;
}

/// The pixels of an image 64 at a time, with values of `invalid` beyond its ends.
class PixelWords {
 public:
  PixelWords(const std::uint16_t* pixels, std::size_t width, std::size_t count, std::uint16_t invalid)
      : pixels_(pixels), width_(width), count_(count), invalid_(invalid) {
    for (std::uint16_t& pixel : outside_) pixel = invalid;
  }

  template <typename Threshold>
  LinkBits links(std::size_t first, const Threshold& threshold) const {
    const U16 invalid = U16::splat(invalid_);
    const std::uint16_t* at = pixels_ + first;
    const std::size_t after = kWordBits + (Threshold::symmetric ? 0 : width_);
    if (first >= width_ && first + after <= count_) [[likely]] {
      return link_bits<Threshold>({at, at - 1, at - width_, at + 1, at + width_}, threshold, invalid);
    }
    Word copies[5];
    return link_bits<Threshold>(
        {part(first, 0, copies[0]), part(first, 1, copies[1]), part(first, width_, copies[2]),
         part(first + 1, 0, copies[3]), part(first + width_, 0, copies[4])},
        threshold, invalid);
  }

 private:
  using Word = std::uint16_t[kWordBits];

  /// The 64 values from pixel `first` - `back`; `copy` when some of them lie outside.
  const std::uint16_t* part(std::size_t first, std::size_t back, Word& copy) const {
    if (first >= back && first - back + kWordBits <= count_) return pixels_ + (first - back);
    if (first + kWordBits <= back || first >= back + count_) return outside_;
    for (std::size_t i = 0; i < kWordBits; ++i) {
      const bool inside = first + i >= back && first + i < back + count_;
      copy[i] = inside ? pixels_[first + i - back] : invalid_;
    }
    return copy;
  }

  const std::uint16_t* pixels_;
  std::size_t width_;
  std::size_t count_;
  std::uint16_t invalid_;
  Word outside_;
};

}  // namespace
}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL

#endif
