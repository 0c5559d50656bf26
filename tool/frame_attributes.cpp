#include "frame_attributes.h"

#include <algorithm>
#include <utility>

namespace zvfilter {

devhost::FrameSpec describe_frame(Image image, const FrameAttributes& attributes) {
  const double fx = attributes.fx.value_or(FrameAttributes::kNominalFocalPerWidth * image.width);
  const auto side = [](std::uint32_t pixels) {
    return static_cast<std::int16_t>(std::min(pixels, std::uint32_t{INT16_MAX}));
  };

  devhost::FrameSpec frame;
  frame.width = image.width;
  frame.height = image.height;
  frame.pixel_type = attributes.pixel_type;
  frame.bits = attributes.bits;
  frame.value_scale = attributes.value_scale;
  frame.intrinsic = {.fx = static_cast<float>(fx),
                     .fy = static_cast<float>(fx),
                     .cx = static_cast<float>(image.width) / 2,
                     .cy = static_cast<float>(image.height) / 2,
                     .width = side(image.width),
                     .height = side(image.height)};
  frame.disparity.baseline =
      static_cast<float>(attributes.baseline.value_or(FrameAttributes::kNominalBaseline));
  frame.disparity.fx = fx;
  frame.disparity.bitSize = attributes.bits;
  frame.disparity.unit = 1;
  frame.disparity.packMode = 2;
  frame.disparity.dispIntPlace = std::min<int>(FrameAttributes::kDisparityIntegerBits, attributes.bits);
  frame.disparity.isDualCamera = 1;
  frame.pixels = std::move(image.pixels);
  return frame;
}

}  // namespace zvfilter
