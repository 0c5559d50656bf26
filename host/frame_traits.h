/// What frames and profiles are made of, as values.
#ifndef FILTERPROCESSOR_HOST_FRAME_TRAITS_H
#define FILTERPROCESSOR_HOST_FRAME_TRAITS_H

#include <cstdint>
#include <map>
#include <vector>

#include "filterprocessor/host.h"

namespace hosts {

struct ProfileTraits {
  std::int32_t format = 0;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  ZVCameraIntrinsic intrinsic = {};
  ZVDisparityParam disparity = {};
};

/// What a frame is made of. Its profile has the same size and format.
struct FrameTraits {
  std::int32_t type = ZV_FRAME_TYPE_DEPTH;
  std::int32_t format = 0;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::int32_t pixel_type = ZV_PIXEL_TYPE_DEPTH;
  std::uint8_t bits = 16;
  float value_scale = 1.0f;
  std::map<std::int32_t, std::int64_t> metadata = {};
  std::vector<std::uint16_t> pixels = {};  ///< may be fewer or more than width x height
  ZVDisparityParam disparity = {};         ///< of the profile
  ZVCameraIntrinsic intrinsic = {};        ///< of the profile
};

}  // namespace hosts

#endif
