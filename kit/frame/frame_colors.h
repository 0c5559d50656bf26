#ifndef KIT_FRAME_FRAME_COLORS_H
#define KIT_FRAME_FRAME_COLORS_H

#include <initializer_list>

#include "kit/frame/frame.h"

namespace kit {

/// Distance ranks, of PixelReader.
struct DistanceRange {
  double low;
  double high;
};

/// The range of all valid pixels of frames of one pixel type but the nearest and the farthest fiftieth.
DistanceRange distance_range(std::initializer_list<const Frame*> frames);

/// The frame in colours from near to far; invalid pixels are black.
ColorImage color_image(const Frame& frame, const DistanceRange& range);

}  // namespace kit

#endif
