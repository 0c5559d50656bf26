#include "kernels/spatial/spatial_plan.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace filterprocessor {

SpatialBounds spatial_bounds(const ThresholdTable& thresholds, Threshold kind, std::size_t capacity) {
  const unsigned largest_pixel = kUnsignedPixels ? 65535 : 32767;
  const unsigned shift = std::min(thresholds.shift, 15u + kUnsignedPixels);
  const auto bound = [&](unsigned index) -> std::uint16_t {
    const auto threshold = thresholds.at(static_cast<std::uint16_t>(index << shift));
    const auto end = static_cast<std::uint16_t>(threshold + (kind == Threshold::inclusive ? 1 : 0));
    return kUnsignedPixels || end <= 32767 ? end : std::uint16_t{0};  // a negative bound admits nothing
  };

  SpatialBounds bounds = {};
  bounds.shift = shift;
  bounds.count = 1;
  std::fill(std::begin(bounds.entries), std::end(bounds.entries), bound(0));
  bounds.largest = bound(0);
  const unsigned last = largest_pixel >> shift;
  for (unsigned index = 1; index <= std::min(last, 255u); ++index) {
    const std::uint16_t end = bound(index);
    if (end == bounds.entries[SpatialBounds::kMaxCapacity - 1]) continue;
    if (index >= capacity) return {};
    bounds.count = index + 1;
    bounds.largest = std::max<unsigned>(bounds.largest, end);
    std::fill(bounds.entries + index, std::end(bounds.entries), end);
  }
  if (last > 255 && bounds.count > 1) return {};  // larger pixels start over with the first entry
  return bounds;
}

SpatialBlend spatial_blend(float alpha, unsigned largest) {
  if (alpha == 0.5f) return {SpatialBlend::Kind::half, 0};

  // In floats, the blend of p and p + d is p + alpha x d but for four errors: 1 - alpha rounds by up to
  // 2^-25, which p scales up; the products and the sum, all below 2^15, round by up to 2^-10 each.
  // Together they are at most 2^-8. So where alpha x d stays farther than that from every half, rounding
  // it alone is exact. The sweep over all d works in units of 2^-32 (with twice the margin) and checks
  // the multiplier too.
  const SpatialBlend floating = {SpatialBlend::Kind::floating, 0};
  if (largest > 4096) return floating;
  const std::int64_t half = std::int64_t{1} << 31;
  const std::int64_t margin = std::int64_t{1} << 25;
  const auto weight = static_cast<std::int64_t>(std::ldexp(static_cast<double>(alpha), 32));
  const auto multiplier = std::min(static_cast<std::int32_t>(std::lround(alpha * 32768.0f)), 32767);
  for (std::int32_t d = 1; d < static_cast<std::int32_t>(largest); ++d) {
    const std::int64_t shifted = weight * d + half;
    const std::int64_t fraction = shifted & (2 * half - 1);
    const std::int64_t value = shifted >> 32;
    const bool clear = fraction > margin && fraction < 2 * half - margin;
    const bool up = (multiplier * d + 0x4000) >> 15 == value;
    const bool down = (multiplier * -d + 0x4000) >> 15 == -value;
    if (!(clear && up && down)) return floating;
  }
  return {SpatialBlend::Kind::fixed_point, static_cast<std::uint16_t>(multiplier)};
}

}  // namespace filterprocessor
