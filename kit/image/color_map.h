#ifndef KIT_IMAGE_COLOR_MAP_H
#define KIT_IMAGE_COLOR_MAP_H

#include <array>
#include <optional>
#include <string_view>

#include "kit/image/image.h"

namespace kit {

/// turbo: blue over green to red, the most steps to tell apart. viridis: purple over green to yellow, always
/// lighter, also for eyes that see few colours and for print. grey: light to dark.
enum class ColorMap { turbo, viridis, grey };
inline constexpr std::array<std::string_view, 3> kColorMapNames = {"turbo", "viridis", "grey"};
std::optional<ColorMap> color_map_named(std::string_view name);

/// From 0 to 1; values outside are taken for the nearer end.
Rgb color_of(ColorMap map, double value);
/// A colour that the map doesn't have and black isn't.
Rgb hole_color(ColorMap map);

/// Blue for -1 over a light grey for 0 to red for 1.
Rgb signed_color(double value);

/// What a pixel that is valid in one of two frames, or in none, looks like in their difference.
struct HoleColors {
  Rgb filled = {46, 158, 91};
  Rgb removed = {152, 62, 168};
  Rgb hole = {196, 196, 202};
};

}  // namespace kit

#endif
