#ifndef FILTERPROCESSOR_KERNELS_SPATIAL_SPATIAL_H
#define FILTERPROCESSOR_KERNELS_SPATIAL_SPATIAL_H

#include <cstddef>
#include <cstdint>

namespace filterprocessor {

/// Thresholds by pixel value. A fixed threshold is a table of one entry.
struct ThresholdTable {
  const std::uint16_t* entries;
  unsigned size;
  unsigned shift;

  /// The threshold for a pixel, by its value before filtering.
  std::uint16_t at(std::uint16_t value) const {
    if (entries == nullptr || size == 0) return 0;
    const unsigned index = shift < 16 ? (value >> shift) & 255u : 0;
    return entries[index < size ? index : size - 1];
  }
};

struct SpatialParameters {
  ThresholdTable thresholds;
  float alpha;          ///< 0..1 or NaN
  std::uint8_t radius;  ///< used by the horizontal passes
};

/// Recursive smoothing at one level; see filterprocessor/spatial.h for the rules.
struct SpatialKernels {
  using Filter = void(std::uint16_t* pixels, std::size_t width, std::size_t height,
                      const SpatialParameters& parameters);

  Filter* horizontal;  ///< the horizontal pair of passes
  Filter* vertical;    ///< the vertical pair
  Filter* both;        ///< the horizontal pair, then the vertical one
};

/// Rows of the horizontal passes and columns of the vertical ones come in groups of so many; the rest
/// stays.
inline constexpr std::size_t kSpatialGroup = 8;

/// What 64-bit Arm does differently: see filterprocessor/spatial.h.
#if defined(__aarch64__)
inline constexpr bool kUnsignedPixels = true;
#else
inline constexpr bool kUnsignedPixels = false;
#endif

/// The absolute value, modulo 2^32.
std::int32_t fast_abs(std::int32_t value);

namespace plain {
extern const SpatialKernels spatial;
}

}  // namespace filterprocessor

#endif
