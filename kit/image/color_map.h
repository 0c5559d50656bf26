#ifndef KIT_IMAGE_COLOR_MAP_H
#define KIT_IMAGE_COLOR_MAP_H

#include <optional>
#include <string_view>

#include "kit/image/image.h"

namespace kit {

/// turbo: blue over green to red, the most steps to tell apart. viridis: purple over green to yellow, always
/// lighter, also for eyes that see few colours and for print. grey: dark to light.
enum class ColorMap { turbo, viridis, grey };
std::optional<ColorMap> color_map_named(std::string_view name);

/// From 0 to 1; values outside are taken for the nearer end.
Rgb color_of(ColorMap map, double value);
/// A colour that the map doesn't have and black isn't.
Rgb hole_color(ColorMap map);

/// Blue for -1 over a light grey for 0 to red for 1.
Rgb signed_color(double value);

}  // namespace kit

#endif
