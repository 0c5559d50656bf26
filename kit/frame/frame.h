#ifndef KIT_FRAME_FRAME_H
#define KIT_FRAME_FRAME_H

#include "dev_host.h"
#include "kit/image/image.h"

namespace kit {

/// A frame as a value: its pixels and all that a host's frame carries beside them. Those of the kit have
/// width x height pixels.
using Frame = devhost::FrameTraits;

inline ImageView image_of(const Frame& frame) { return {frame.width, frame.height, frame.pixels}; }

}  // namespace kit

#endif
