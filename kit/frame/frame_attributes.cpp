#include "kit/frame/frame_attributes.h"

#include <algorithm>
#include <utility>

namespace kit {

namespace {

/// Depth frames of 16 bits and millimetres, whose geometry is a guess.
Frame nominal_camera(const Image& image, std::uint8_t bits) {
  const double fx = FrameAttributes::kNominalFocalPerWidth * image.width;
  const auto side = [](std::uint32_t pixels) {
    return static_cast<std::int16_t>(std::min(pixels, std::uint32_t{INT16_MAX}));
  };
  Frame camera;
  camera.bits = bits;
  camera.intrinsic = {.fx = static_cast<float>(fx),
                      .fy = static_cast<float>(fx),
                      .cx = static_cast<float>(image.width) / 2,
                      .cy = static_cast<float>(image.height) / 2,
                      .width = side(image.width),
                      .height = side(image.height)};
  camera.disparity.baseline = static_cast<float>(FrameAttributes::kNominalBaseline);
  camera.disparity.fx = fx;
  camera.disparity.bitSize = bits;
  camera.disparity.unit = 1;
  camera.disparity.packMode = 2;
  camera.disparity.dispIntPlace = std::min<int>(FrameAttributes::kDisparityIntegerBits, bits);
  camera.disparity.isDualCamera = 1;
  return camera;
}

}  // namespace

Frame describe_frame(Image image, const FrameAttributes& attributes) {
  Frame frame =
      attributes.camera ? *attributes.camera : nominal_camera(image, attributes.bits.value_or(16));
  if (attributes.value_scale) frame.value_scale = *attributes.value_scale;
  if (attributes.bits) frame.bits = frame.disparity.bitSize = *attributes.bits;
  if (attributes.pixel_type) frame.pixel_type = *attributes.pixel_type;
  if (attributes.baseline) frame.disparity.baseline = static_cast<float>(*attributes.baseline);
  if (attributes.fx) {
    frame.disparity.fx = *attributes.fx;
    frame.intrinsic.fx = frame.intrinsic.fy = static_cast<float>(*attributes.fx);
  }
  frame.width = image.width;
  frame.height = image.height;
  frame.pixels = std::move(image.pixels);
  return frame;
}

}  // namespace kit
