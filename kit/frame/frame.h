#ifndef KIT_FRAME_FRAME_H
#define KIT_FRAME_FRAME_H

#include <span>

#include "frame_traits.h"
#include "kit/image/image.h"

namespace kit {

/// A frame as a value: its pixels and all that a host's frame carries beside them. Those of the kit have
/// width x height pixels.
using Frame = hosts::FrameTraits;

/// A frame whose pixels somebody else holds, and what they mean.
struct FrameView {
  FrameView(const hosts::FrameTraits& traits, const ZVDisparityParam& disparity_parameters,
            std::span<const std::uint16_t> samples)
      : format(traits.format),
        width(traits.width),
        height(traits.height),
        pixel_type(traits.pixel_type),
        value_scale(traits.value_scale),
        correction(correction_of(traits)),
        disparity(disparity_parameters),
        pixels(samples) {}
  FrameView(const Frame& frame) : FrameView(frame, frame.disparity, frame.pixels) {}

  std::int32_t format;
  std::uint32_t width;
  std::uint32_t height;
  std::int32_t pixel_type;
  float value_scale;
  double correction;  ///< of the disparity, pixels
  ZVDisparityParam disparity;
  std::span<const std::uint16_t> pixels;

 private:
  static double correction_of(const hosts::FrameTraits& traits) {
    const auto item = traits.metadata.find(ZV_METADATA_DISPARITY_CORRECTION);
    return item != traits.metadata.end() ? static_cast<double>(item->second) : 0;
  }
};

inline bool same_size(const FrameView& a, const FrameView& b) {
  return a.width == b.width && a.height == b.height;
}

inline ImageView image_of(const FrameView& frame) { return {frame.width, frame.height, frame.pixels}; }

/// A copy of what the view says.
inline Frame frame_of(const FrameView& view) {
  Frame frame;
  frame.format = view.format;
  frame.width = view.width;
  frame.height = view.height;
  frame.pixel_type = view.pixel_type;
  frame.value_scale = view.value_scale;
  frame.disparity = view.disparity;
  if (view.correction != 0)
    frame.metadata[ZV_METADATA_DISPARITY_CORRECTION] = static_cast<std::int64_t>(view.correction);
  frame.pixels.assign(view.pixels.begin(), view.pixels.end());
  return frame;
}

}  // namespace kit

#endif
