#ifndef KIT_FRAME_FRAME_COLORS_H
#define KIT_FRAME_FRAME_COLORS_H

#include <initializer_list>
#include <optional>

#include "kit/frame/frame.h"
#include "kit/image/color_map.h"

namespace kit {

/// Millimetres.
struct DepthRange {
  double near = 0;
  double far = 0;
};

/// The range of all valid pixels but the nearest and the farthest fiftieth; nothing without valid pixels.
std::optional<DepthRange> depth_range(std::initializer_list<FrameView> frames);

/// The frame in colours from near to far; invalid pixels have the map's hole_color().
ColorImage color_image(const FrameView& frame, const DepthRange& range, ColorMap map);

/// The change that 98 of 100 changed pixels don't exceed, in millimetres, of frames of one size; 0 if nothing changed.
double change_limit(const FrameView& before, const FrameView& after);

/// after - before in signed_color(), from -limit to limit millimetres, of frames of one size.
ColorImage difference_image(const FrameView& before, const FrameView& after, double limit);

}  // namespace kit

#endif
