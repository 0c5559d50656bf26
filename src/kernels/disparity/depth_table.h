#ifndef FILTERPROCESSOR_KERNELS_DISPARITY_DEPTH_TABLE_H
#define FILTERPROCESSOR_KERNELS_DISPARITY_DEPTH_TABLE_H

#include <cstddef>
#include <cstdint>

#include "filterprocessor/disparity_codes.h"

namespace filterprocessor {

/// How a code stands for a disparity in pixels.
enum class CodeLayout {
  linear,    ///< code / scale
  inverted,  ///< 200.375 - 2 code / scale; the stereo rule adds 128 and subtracts the smallest disparity
  signed_14_bit,  ///< the low 14 bits as a two's-complement number, over scale
};

/// The depths that a table keeps; all others become 0.
struct DepthLimits {
  double min;
  double max;
  double end;  ///< first depth that has no place in an entry
};

/// Depth from two cameras: focal_baseline / (disparity + offsets) * unit, where the disparity lies
/// between 0 and `disparity_end`, both excluded, and is not the invalid one.
struct StereoRule {
  CodeLayout layout;  ///< linear or inverted
  double scale;       ///< codes per pixel of disparity, a power of two
  double focal_baseline;
  double unit;
  double disparity_offset;
  double metadata_offset;
  double min_disparity;
  double disparity_end;
  double invalid_disparity;
  DepthLimits limits;
};

/// Depth from one camera and a projector: numerator / (disparity * slope + 1), with the denominator
/// rounded once.
struct MonoRule {
  CodeLayout layout;
  double scale;
  double numerator;
  double slope;
  double disparity_offset;
  DepthLimits limits;
};

/// The largest number of entries; codes are 16 bits.
inline constexpr std::size_t kMaxDepthTable = 65536;

/// Table building at one level. `table` has `size` entries, at most kMaxDepthTable, all 0.
struct DepthTableKernels {
  void (*stereo)(const StereoRule& rule, std::uint16_t* table, std::size_t size);
  void (*mono)(const MonoRule& rule, std::uint16_t* table, std::size_t size);
};

/// These and larger codes are marks, not disparities.
inline constexpr std::size_t kDisparityCodeEnd = ZV_DISPARITY_CODE_MAX + 1;

namespace plain {

/// The entry that a rule gives `code`.
std::uint16_t stereo_entry(const StereoRule& rule, std::size_t code);
std::uint16_t mono_entry(const MonoRule& rule, std::size_t code);

extern const DepthTableKernels depth_table;

}  // namespace plain

}  // namespace filterprocessor

#endif
