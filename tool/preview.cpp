#include "preview.h"

#include <algorithm>
#include <cmath>

namespace zvfilter {

namespace {

using Rgb = std::array<unsigned char, 3>;

constexpr std::uint32_t kGap = 8;  // columns between the images

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

struct Range {
  double low;
  double high;
};

Range robust_range(const Image& before, const Image& after) {
  std::vector<std::uint64_t> histogram(65536);
  for (const Image* image : {&before, &after}) {
    for (const std::uint16_t pixel : image->pixels) ++histogram[pixel];
  }
  std::uint64_t valid = 0;
  for (std::size_t value = 1; value < histogram.size(); ++value) valid += histogram[value];
  // The smallest value with more than `rank` valid pixels up to it.
  const auto value_at = [&](std::uint64_t rank) {
    std::size_t value = 0;
    for (std::uint64_t seen = 0; seen <= rank && value + 1 < histogram.size();)
      seen += histogram[++value];
    return static_cast<double>(value);
  };
  if (valid == 0) return {0, 1};
  return {value_at(valid / 50), value_at(valid - 1 - valid / 50)};
}

void paint(const Image& image, const std::vector<Rgb>& colors, std::uint32_t left, ColorImage& picture) {
  for (std::uint32_t y = 0; y < image.height; ++y) {
    const std::uint16_t* from = image.pixels.data() + std::size_t{y} * image.width;
    unsigned char* to = picture.pixels.data() + (std::size_t{y} * picture.width + left) * 3;
    for (std::uint32_t x = 0; x < image.width; ++x) to = std::copy_n(colors[from[x]].begin(), 3, to);
  }
}

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

ColorImage preview(const Image& before, const Image& after) {
  const Range range = robust_range(before, after);
  std::vector<Rgb> colors(65536);  // of every pixel value; that of 0 stays black
  for (std::size_t value = 1; value < colors.size(); ++value) {
    const double offset = static_cast<double>(value) - range.low;
    colors[value] = rainbow(range.high > range.low ? offset / (range.high - range.low) : 0.5 + offset);
  }
  ColorImage picture{before.width + kGap + after.width, std::max(before.height, after.height), {}};
  picture.pixels.resize(std::size_t{3} * picture.width * picture.height);
  paint(before, colors, 0, picture);
  paint(after, colors, before.width + kGap, picture);
  return picture;
}

}  // namespace zvfilter
