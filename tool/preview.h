#ifndef ZVFILTER_PREVIEW_H
#define ZVFILTER_PREVIEW_H

#include <array>

#include "images/codec.h"

namespace zvfilter {

/// Blue over green to red for 0 to 1; values outside are taken for the nearer end.
std::array<unsigned char, 3> rainbow(double value);

/// Both images side by side in colours of one range, which leaves out the lowest and the highest fiftieth
/// of their valid pixels. Invalid pixels (0) and what neither image covers are black.
ColorImage preview(const Image& before, const Image& after);

}  // namespace zvfilter

#endif
