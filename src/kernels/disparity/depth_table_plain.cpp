#include <cmath>

#include "common/saturate.h"
#include "kernels/disparity/depth_table.h"

namespace filterprocessor::plain {

namespace {

std::uint16_t mono_depth(const MonoRule& rule, double disparity) {
  const double z = rule.numerator / std::fma(disparity + rule.disparity_offset, rule.slope, 1.0);
  return rule.limits.min <= z && z < rule.limits.end && z <= rule.limits.max ? saturate<std::uint16_t>(z)
                                                                             : std::uint16_t{0};
}

}  // namespace

std::uint16_t stereo_entry(const StereoRule& rule, std::size_t code) {
  if (code >= kDisparityCodeEnd) return 0;
  const auto i = static_cast<double>(code);
  const double d = rule.layout == CodeLayout::inverted
                       ? ((200.375 - (2 * i) / rule.scale) + 128.0) - rule.min_disparity
                       : i / rule.scale;
  if (std::fabs(d - rule.invalid_disparity) < 0.0001) return 0;
  if (!(d < rule.disparity_end) || !(d > 0)) return 0;
  const double z = rule.focal_baseline / ((d + rule.disparity_offset) + rule.metadata_offset) * rule.unit;
  if (z > rule.limits.max || z >= rule.limits.end || z < rule.limits.min) return 0;
  return saturate<std::uint16_t>(z);
}

std::uint16_t mono_entry(const MonoRule& rule, std::size_t code) {
  const auto i = static_cast<double>(code);
  switch (rule.layout) {
    case CodeLayout::inverted:
      return code == 0 || code > 65534 ? std::uint16_t{0}
                                       : mono_depth(rule, 200.375 - (2 * i) / rule.scale);
    case CodeLayout::signed_14_bit: {
      if (code == ZV_DISPARITY_UNMATCHED_SIGNED || code > 65534) return 0;
      const int low = static_cast<int>(code & 16383);
      return mono_depth(rule, (low < 8192 ? low : low - 16384) / rule.scale);
    }
    case CodeLayout::linear:
    default:
      return code >= kDisparityCodeEnd ? std::uint16_t{0} : mono_depth(rule, i / rule.scale);
  }
}

namespace {

void build_stereo_table(const StereoRule& rule, std::uint16_t* table, std::size_t size) {
  for (std::size_t code = 0; code < size; ++code) table[code] = stereo_entry(rule, code);
}

void build_mono_table(const MonoRule& rule, std::uint16_t* table, std::size_t size) {
  for (std::size_t code = 0; code < size; ++code) table[code] = mono_entry(rule, code);
}

}  // namespace

extern const DepthTableKernels depth_table = {build_stereo_table, build_mono_table};

}  // namespace filterprocessor::plain
