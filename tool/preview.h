#ifndef ZVFILTER_PREVIEW_H
#define ZVFILTER_PREVIEW_H

#include "kit/frame/frame.h"

namespace zvfilter {

/// Both frames side by side in colours from near to far. Their range is that of both frames, or each
/// frame's own where their pixel types differ; it leaves out the nearest and the farthest fiftieth of the
/// valid pixels. Invalid pixels and what neither frame covers are black.
kit::ColorImage preview(const kit::Frame& before, const kit::Frame& after);

}  // namespace zvfilter

#endif
