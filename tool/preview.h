#ifndef ZVFILTER_PREVIEW_H
#define ZVFILTER_PREVIEW_H

#include <array>

#include "frame_image.h"

namespace zvfilter {

/// Blue over green to red for 0 to 1; values outside are taken for the nearer end.
std::array<unsigned char, 3> rainbow(double value);

/// Both images side by side in colours from near to far. Their range is that of both images, or each
/// image's own where their pixel types differ; it leaves out the nearest and the farthest fiftieth of the
/// valid pixels. Invalid pixels and what neither image covers are black.
ColorImage preview(const FrameImage& before, const FrameImage& after);

}  // namespace zvfilter

#endif
