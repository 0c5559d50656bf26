#include "filters/depth_difference_table.h"

#include <cmath>

#include "common/saturate.h"

namespace filterprocessor {

bool DepthDifferenceTable::update(const IPrivFilter::FrameInfoInner& info, std::uint16_t difference) {
  if (info.depth_flag == ZV_PIXEL_TYPE_LINEAR_DEPTH) {
    shift = 9;
    for (unsigned k = 0; k < entries.size(); ++k) {
      entries[k] = static_cast<std::uint16_t>(difference * (k + 1));
    }
    return true;
  }
  if (info.depth_flag != ZV_PIXEL_TYPE_DEPTH) {
    entries.fill(0);  // the shift stays
    return true;
  }
  if (info.depth_unit <= 0 || info.bxf <= 0) return false;
  shift = 13;
  if (!(info.depth_unit < 0.1)) {
    const float octaves = std::floor(std::log2(static_cast<float>(info.depth_unit / 0.1)));
    shift = static_cast<std::uint8_t>(12u - static_cast<std::uint32_t>(saturate<std::int32_t>(octaves)));
  }
  const auto disparity = static_cast<float>(difference / std::ldexp(1.0, info.fraction_bit_size));
  const float base = disparity * 500.0f * 500.0f / info.bxf;
  for (unsigned k = 0; k < entries.size(); ++k) {
    const float step = base * static_cast<float>((k + 1) * (k + 1));
    entries[k] = static_cast<std::uint16_t>(saturate<std::int64_t>(double{step} / info.depth_unit));
  }
  return true;
}

std::uint16_t rescale_difference(std::uint16_t difference, std::uint8_t from_bits, std::uint8_t to_bits) {
  const double scaled = std::ldexp(1.0, to_bits) * difference / std::ldexp(1.0, from_bits);
  return static_cast<std::uint16_t>(saturate<std::int64_t>(scaled));
}

}  // namespace filterprocessor
