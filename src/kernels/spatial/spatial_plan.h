#ifndef FILTERPROCESSOR_KERNELS_SPATIAL_SPATIAL_PLAN_H
#define FILTERPROCESSOR_KERNELS_SPATIAL_SPATIAL_PLAN_H

#include "kernels/spatial/spatial.h"

namespace filterprocessor {

/// Whether the pixels at a distance equal to the threshold are blended.
enum class Threshold { inclusive, exclusive };

/// A threshold table as the vector kernels look it up: pixels are blended at distances below entry
/// min(value >> shift, capacity - 1). For valid pixels this is what ThresholdTable::at() says.
struct SpatialBounds {
  static constexpr std::size_t kMaxCapacity = 32;

  std::uint16_t entries[kMaxCapacity];
  std::size_t count;  ///< the entries from the last of these on are the same; 0: the table does not fit
  unsigned shift;
  unsigned largest;
};
SpatialBounds spatial_bounds(const ThresholdTable& thresholds, Threshold kind, std::size_t capacity);

/// How the kernels of processors with rounding blends get the exact value.
struct SpatialBlend {
  enum class Kind {
    half,         ///< the mean, ties to even
    fixed_point,  ///< neighbour + round(multiplier x difference / 2^15)
    floating      ///< as described
  };
  Kind kind;
  std::uint16_t multiplier;  ///< for fixed_point
};
/// @param alpha    weight of the current pixel, 0..1
/// @param largest  pixels are blended at distances below it only
SpatialBlend spatial_blend(float alpha, unsigned largest);

}  // namespace filterprocessor

#endif
