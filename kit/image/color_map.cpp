#include "kit/image/color_map.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace kit {

namespace {

// Colours at even steps of the value.
constexpr std::array<Rgb, 17> kTurbo = {{{48, 18, 59},
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
                                         {122, 4, 3}}};
constexpr std::array<Rgb, 11> kViridis = {{{68, 1, 84},
                                           {72, 36, 117},
                                           {65, 68, 135},
                                           {53, 95, 141},
                                           {42, 120, 142},
                                           {33, 145, 140},
                                           {34, 168, 132},
                                           {68, 191, 112},
                                           {122, 209, 81},
                                           {189, 223, 38},
                                           {253, 231, 37}}};
constexpr std::array<Rgb, 2> kGrey = {{{250, 250, 250}, {16, 16, 16}}};
constexpr std::array<Rgb, 9> kSigned = {{{8, 48, 107},
                                         {33, 102, 172},
                                         {103, 169, 207},
                                         {190, 218, 233},
                                         {247, 247, 245},
                                         {250, 212, 180},
                                         {239, 138, 98},
                                         {190, 50, 40},
                                         {103, 0, 13}}};

Rgb mix(std::span<const Rgb> steps, double value) {
  const double position = std::clamp(value, 0.0, 1.0) * static_cast<double>(steps.size() - 1);
  const std::size_t first = std::min(static_cast<std::size_t>(position), steps.size() - 2);
  const double part = position - static_cast<double>(first);
  Rgb color{};
  for (std::size_t i = 0; i < color.size(); ++i)
    color[i] = static_cast<unsigned char>(
        std::lround(steps[first][i] * (1 - part) + steps[first + 1][i] * part));
  return color;
}

}  // namespace

std::optional<ColorMap> color_map_named(std::string_view name) {
  const auto found = std::find(kColorMapNames.begin(), kColorMapNames.end(), name);
  if (found == kColorMapNames.end()) return std::nullopt;
  return static_cast<ColorMap>(found - kColorMapNames.begin());
}

Rgb color_of(ColorMap map, double value) {
  switch (map) {
    case ColorMap::turbo:
      return mix(kTurbo, value);
    case ColorMap::viridis:
      return mix(kViridis, value);
    case ColorMap::grey:
      break;
  }
  return mix(kGrey, value);
}

Rgb hole_color(ColorMap map) { return map == ColorMap::grey ? Rgb{196, 132, 200} : Rgb{214, 214, 220}; }

Rgb signed_color(double value) { return mix(kSigned, (value + 1) / 2); }

}  // namespace kit
