#include "kit/frame/frame_attributes.h"

#include <algorithm>
#include <utility>

namespace kit {

Input describe_input(const Size& size, const FrameAttributes& attributes) {
  Input input = attributes.camera.value_or(Input());
  hosts::FrameTraits& traits = input.traits;
  traits.width = size.width;
  traits.height = size.height;
  if (attributes.value_scale) traits.value_scale = *attributes.value_scale;
  if (attributes.bits) traits.bits = *attributes.bits;
  if (attributes.pixel_type) traits.pixel_type = *attributes.pixel_type;
  const double nominal_fx = FrameAttributes::kNominalFocalPerWidth * size.width;
  if (!input.has_geometry) input.set_stereo(FrameAttributes::kNominalBaseline, nominal_fx);
  if (attributes.bits) traits.disparity.bitSize = *attributes.bits;
  if (attributes.baseline) traits.disparity.baseline = static_cast<float>(*attributes.baseline);
  if (attributes.fx) traits.disparity.fx = *attributes.fx;
  if (!input.has_intrinsics || attributes.fx) {
    const auto fx = static_cast<float>(attributes.fx.value_or(nominal_fx));
    traits.intrinsic.fx = traits.intrinsic.fy = fx;
  }
  if (!input.has_intrinsics) {
    const auto side = [](std::uint32_t pixels) {
      return static_cast<std::int16_t>(std::min(pixels, std::uint32_t{INT16_MAX}));
    };
    traits.intrinsic.cx = static_cast<float>(size.width) / 2;
    traits.intrinsic.cy = static_cast<float>(size.height) / 2;
    traits.intrinsic.width = side(size.width);
    traits.intrinsic.height = side(size.height);
  }
  input.has_intrinsics = true;
  return input;
}

Frame describe_frame(Image image, const FrameAttributes& attributes) {
  Frame frame = describe_input({image.width, image.height}, attributes).traits;
  frame.pixels = std::move(image.pixels);
  return frame;
}

}  // namespace kit
