#include "kit/report/color_maps.h"

#include <algorithm>
#include <cmath>

namespace kit {

Rgb ColorMap::at(double position) const {
  const double place = std::clamp(position, 0.0, 1.0) * static_cast<double>(anchors.size() - 1);
  const std::size_t first = std::min(static_cast<std::size_t>(place), anchors.size() - 2);
  const double part = place - static_cast<double>(first);
  Rgb color{};
  for (std::size_t i = 0; i < color.size(); ++i) {
    const double mixed = anchors[first][i] * (1 - part) + anchors[first + 1][i] * part;
    color[i] = static_cast<unsigned char>(std::lround(mixed));
  }
  return color;
}

const std::vector<ColorMap>& color_maps() {
  static const std::vector<ColorMap> maps = {{"turbo",
                                              {{48, 18, 59},
                                               {73, 62, 175},
                                               {68, 106, 238},
                                               {50, 149, 247},
                                               {38, 189, 225},
                                               {41, 221, 187},
                                               {64, 243, 146},
                                               {102, 253, 109},
                                               {150, 250, 80},
                                               {198, 235, 59},
                                               {238, 208, 45},
                                               {255, 171, 36},
                                               {255, 128, 29},
                                               {238, 84, 21},
                                               {201, 45, 12},
                                               {161, 18, 2},
                                               {122, 4, 3}},
                                              {214, 214, 220}},
                                             {"viridis",
                                              {{68, 1, 84},
                                               {72, 36, 117},
                                               {65, 68, 135},
                                               {53, 95, 141},
                                               {42, 120, 142},
                                               {33, 145, 140},
                                               {34, 168, 132},
                                               {68, 191, 112},
                                               {122, 209, 81},
                                               {189, 223, 38},
                                               {253, 231, 37}},
                                              {214, 214, 220}},
                                             {"grey", {{250, 250, 250}, {16, 16, 16}}, {196, 132, 200}}};
  return maps;
}

const ColorMap& difference_map() {
  static const ColorMap map = {"difference",
                               {{8, 48, 107},
                                {33, 102, 172},
                                {103, 169, 207},
                                {190, 218, 233},
                                {247, 247, 245},
                                {250, 212, 180},
                                {239, 138, 98},
                                {190, 50, 40},
                                {103, 0, 13}},
                               {196, 196, 202}};
  return map;
}

}  // namespace kit
