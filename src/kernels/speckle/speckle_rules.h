/// Thresholds and limits of speckle removal for single pixels and regions. Everything is internal to the
/// file that includes it, so that each processor level gets a copy compiled for itself.
#ifndef FILTERPROCESSOR_KERNELS_SPECKLE_SPECKLE_RULES_H
#define FILTERPROCESSOR_KERNELS_SPECKLE_SPECKLE_RULES_H

#include "kernels/speckle/speckle.h"

namespace filterprocessor {
namespace {

/// The largest difference that joins to a pixel, whatever the pixel's value.
struct FixedThreshold {
  std::int32_t max_diff;
  explicit FixedThreshold(const SpeckleThreshold& from) : max_diff(from.max_diff) {}
  std::int32_t operator()(std::uint16_t) const { return max_diff; }
};

/// The same by the low byte of the shifted value; entries past the table's end repeat its last.
struct TableThreshold {
  std::uint16_t entries[256];
  unsigned shift;
  explicit TableThreshold(const SpeckleThreshold& from) : shift(from.shift < 16 ? from.shift : 16) {
    for (unsigned i = 0; i < 256; ++i) {
      const unsigned last = from.size - 1u;
      entries[i] =
          from.table == nullptr || from.size == 0 ? std::uint16_t{0} : from.table[i < last ? i : last];
    }
  }
  std::int32_t operator()(std::uint16_t value) const {
    return entries[static_cast<unsigned>(value) >> shift & 0xff];
  }
};

/// The limit of a region from its first pixel.
class RegionLimit {
 public:
  /// `width` and `height` are the full image's.
  RegionLimit(const SpeckleLimit& from, std::size_t width, std::size_t height) : limit_(from) {
    if (limit_.map == nullptr) return;
    cell_width_ = width / limit_.map_cols;
    cell_height_ = height / limit_.map_rows;
  }
  std::int32_t operator()(std::size_t row, std::size_t col) const {
    if (limit_.map == nullptr) return limit_.max_size;
    const std::size_t cell = row / cell_height_ * limit_.map_cols + col / cell_width_;
    const std::size_t last = limit_.map_cols * limit_.map_rows - 1;
    return limit_.map[cell < last ? cell : last];
  }

 private:
  SpeckleLimit limit_;
  std::size_t cell_width_ = 1;
  std::size_t cell_height_ = 1;
};

}  // namespace
}  // namespace filterprocessor

#endif
