#include "disparity_code.h"

#include <algorithm>
#include <cmath>

namespace devhost {

DisparityCode::DisparityCode(const ZVDisparityParam& record, double correction)
    : signed_(has_signed_codes(record)),
      lowest_(signed_ ? -8191 : 1),
      highest_(signed_ ? 8191 : std::min<std::int32_t>(ZV_DISPARITY_CODE_MAX, (1 << record.bitSize) - 1)),
      invalid_(signed_ ? ZV_DISPARITY_UNMATCHED_SIGNED : 0) {
  const bool dual = record.isDualCamera != 0;
  // What the code stands for is P - origin.
  const double reference = record.fx * static_cast<double>(record.baseline) / record.zpd;
  const double origin = dual ? record.dispOffset + correction : record.dispOffset + reference;
  const double whole = std::ldexp(1.0, record.bitSize - (record.packMode == 3 ? 10 : 8));
  if (record.packMode == 1) {
    const double largest = dual ? 200.375 + 128.0 - static_cast<double>(record.minDisparity) : 200.375;
    steps_per_pixel_ = -whole / 2;
    at_zero_ = largest + origin;
    if (dual) {  // only values above 0 and below 256 are read
      lowest_ = std::max(lowest_, static_cast<std::int32_t>(std::floor((largest - 256) * whole / 2)) + 1);
      highest_ = std::min(highest_, static_cast<std::int32_t>(std::ceil(largest * whole / 2)) - 1);
    }
  } else {
    steps_per_pixel_ = whole;
    at_zero_ = origin;
    if (record.packMode == 4 && record.bitSize == 16) invalid_ = ZV_DISPARITY_UNMATCHED;
  }
}

std::uint16_t DisparityCode::operator()(double disparity) const {
  const double step = std::floor((disparity - at_zero_) * steps_per_pixel_ + 0.5);
  if (!(step >= lowest_ && step <= highest_)) return invalid_;
  const auto code = static_cast<std::int32_t>(step);
  return static_cast<std::uint16_t>(signed_ ? code & 0x3FFF : code);
}

double DisparityCode::disparity(std::uint16_t code) const {
  const std::int32_t low = code & 0x3FFF;
  const std::int32_t step = !signed_ ? code : low < ZV_DISPARITY_UNMATCHED_SIGNED ? low : low - 0x4000;
  return at_zero_ + step / steps_per_pixel_;
}

}  // namespace devhost
