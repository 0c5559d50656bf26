#ifndef KIT_REPORT_COLOR_MAPS_H
#define KIT_REPORT_COLOR_MAPS_H

#include <string_view>
#include <vector>

#include "kit/image/image.h"

namespace kit {

/// Colours from near to far, and one that is none of them for pixels without a value.
struct ColorMap {
  std::string_view name;
  std::vector<Rgb> anchors;  ///< at even steps
  Rgb invalid;

  /// For 0 to 1; values outside are taken for the nearer end.
  Rgb at(double position) const;
};

/// The first is the one that pictures are made in.
const std::vector<ColorMap>& color_maps();

/// From less over no change to more, for 0 over 0.5 to 1.
const ColorMap& difference_map();

}  // namespace kit

#endif
