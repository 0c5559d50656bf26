#include "kit/image/color_map.h"

#include <algorithm>
#include <cmath>

namespace kit {

namespace {

// Colours at even steps of the value; lightness rises up to the middle and falls again.
constexpr std::array<Rgb, 11> kAnchors = {{{48, 20, 62},
                                           {66, 80, 190},
                                           {68, 140, 252},
                                           {32, 194, 228},
                                           {30, 232, 172},
                                           {110, 252, 96},
                                           {190, 240, 54},
                                           {244, 200, 56},
                                           {250, 126, 34},
                                           {212, 54, 8},
                                           {124, 6, 4}}};

}  // namespace

Rgb rainbow(double value) {
  const double position = std::clamp(value, 0.0, 1.0) * (kAnchors.size() - 1);
  const std::size_t first = std::min(static_cast<std::size_t>(position), kAnchors.size() - 2);
  const double part = position - static_cast<double>(first);
  Rgb color{};
  for (std::size_t i = 0; i < color.size(); ++i) {
    const double mixed = kAnchors[first][i] * (1 - part) + kAnchors[first + 1][i] * part;
    color[i] = static_cast<unsigned char>(std::lround(mixed));
  }
  return color;
}

}  // namespace kit
