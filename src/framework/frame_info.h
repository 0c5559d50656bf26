#ifndef FILTERPROCESSOR_FRAMEWORK_FRAME_INFO_H
#define FILTERPROCESSOR_FRAMEWORK_FRAME_INFO_H

#include "framework/printed.h"
#include "framework/priv_filter.h"

namespace filterprocessor {

/// Baseline times focal length.
inline double focal_baseline(const ZVDisparityParam& params) {
  return params.fx * double{params.baseline};
}

/// Takes what the profile's disparity parameters and the frame's available bits say.
inline void take_geometry(IPrivFilter::FrameInfoInner& info, const ZVDisparityParam& params,
                          std::uint8_t available_bits) {
  info.bxf = static_cast<float>(focal_baseline(params));
  info.fraction_bit_size =
      static_cast<std::uint8_t>(available_bits - static_cast<std::uint32_t>(params.dispIntPlace));
}

/// Adds the lines of "current_frame_info: ". `Bits` is what the fraction bits are
/// written as: int for a number, unsigned char for one raw character.
template <typename Bits>
void print_frame_info(Printed& out, const IPrivFilter::FrameInfoInner& info) {
  out << "current_frame_info: \n"
      << "width:      " << info.width << '\n'
      << "height:     " << info.height << '\n'
      << "bxf:        " << info.bxf << '\n'
      << "depth_flag: " << info.depth_flag << '\n'
      << "depth_unit: " << info.depth_unit << '\n'
      << "fraction_bit_size: " << static_cast<Bits>(info.fraction_bit_size) << '\n';
}

}  // namespace filterprocessor

#endif
