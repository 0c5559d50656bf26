#include "kit/image/color_map.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace kit {

namespace {

// Colours at even steps of the value.
constexpr std::array<Rgb, 10> kTurbo = {{{48, 18, 59},
                                         {70, 98, 215},
                                         {54, 170, 249},
                                         {26, 228, 182},
                                         {114, 254, 94},
                                         {199, 239, 52},
                                         {250, 186, 57},
                                         {246, 107, 25},
                                         {203, 42, 4},
                                         {122, 4, 3}}};
constexpr std::array<Rgb, 9> kViridis = {{{68, 1, 84},
                                          {71, 45, 123},
                                          {59, 82, 139},
                                          {44, 114, 142},
                                          {33, 145, 140},
                                          {40, 174, 128},
                                          {94, 201, 98},
                                          {173, 220, 48},
                                          {253, 231, 37}}};
constexpr std::array<Rgb, 2> kGrey = {{{0, 0, 0}, {255, 255, 255}}};
constexpr std::array<Rgb, 5> kSigned = {
    {{59, 76, 192}, {141, 176, 254}, {221, 221, 221}, {244, 152, 122}, {180, 4, 38}}};

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
  if (name == "turbo") return ColorMap::turbo;
  if (name == "viridis") return ColorMap::viridis;
  if (name == "grey") return ColorMap::grey;
  return std::nullopt;
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

Rgb hole_color(ColorMap map) { return map == ColorMap::grey ? Rgb{120, 40, 90} : Rgb{128, 128, 128}; }

Rgb signed_color(double value) { return mix(kSigned, (value + 1) / 2); }

}  // namespace kit
