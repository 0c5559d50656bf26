/// From measured disparities to the codes of a disparity frame, by the frame's parameter record.
#ifndef FILTERPROCESSOR_HOST_DISPARITY_CODE_H
#define FILTERPROCESSOR_HOST_DISPARITY_CODE_H

#include <cstdint>

#include "filterprocessor/disparity_codes.h"
#include "filterprocessor/host.h"

namespace devhost {

/// Whether codes are 14-bit two's complement: those of one camera in pack mode 2, if long enough.
inline bool has_signed_codes(const ZVDisparityParam& record) {
  return record.packMode == 2 && record.isDualCamera == 0 && record.bitSize >= 14;
}

/// Encodes for one record. With P the disparity in pixels, FB = fx x baseline and z = FB / P:
/// a record of two cameras (`isDualCamera`) codes P itself, a record of one camera how much P
/// exceeds the disparity FB / zpd of the reference plane.
class DisparityCode {
 public:
  /// `correction`: what the reader of a record of two cameras adds to every disparity.
  DisparityCode(const ZVDisparityParam& record, double correction);

  /// The code of disparity P > 0, or invalid() where the record has none.
  std::uint16_t operator()(double disparity) const;
  /// What a code that is not invalid() stands for.
  double disparity(std::uint16_t code) const;
  std::uint16_t invalid() const { return invalid_; }

 private:
  double steps_per_pixel_;  // negative where larger disparities have smaller codes
  double at_zero_;          // the disparity P of code 0
  bool signed_;
  std::int32_t lowest_, highest_;
  std::uint16_t invalid_;
};

}  // namespace devhost

#endif
