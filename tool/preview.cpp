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

constexpr std::int32_t kFarthest = 65535;  // distance rank

struct Range {
  double low;
  double high;
};

Range robust_range(std::initializer_list<const FrameImage*> frames) {
  std::vector<std::uint64_t> histogram(2 * kFarthest + 1);  // of distance ranks
  std::uint64_t valid = 0;
  for (const FrameImage* frame : frames) {
    const PixelReader reader(frame->attributes);
    for (const std::uint16_t pixel : frame->image.pixels) {
      const auto rank = reader.distance_rank(pixel);
      if (!rank) continue;
      ++histogram[static_cast<std::size_t>(*rank + kFarthest)];
      ++valid;
    }
  }
  if (valid == 0) return {0, 1};
  // The smallest rank with more than `place` valid pixels up to it.
  const auto rank_at = [&](std::uint64_t place) {
    std::size_t at = 0;
    for (std::uint64_t seen = histogram[0]; seen <= place; seen += histogram[at]) ++at;
    return static_cast<double>(at) - kFarthest;
  };
  return {rank_at(valid / 50), rank_at(valid - 1 - valid / 50)};
}

/// Of every pixel value; invalid ones stay black.
std::vector<Rgb> colors_of(const FrameImage& frame, const Range& range) {
  const PixelReader reader(frame.attributes);
  std::vector<Rgb> colors(65536);
  for (std::size_t value = 0; value < colors.size(); ++value) {
    const auto rank = reader.distance_rank(static_cast<std::uint16_t>(value));
    if (!rank) continue;
    const double offset = *rank - range.low;
    colors[value] = rainbow(range.high > range.low ? offset / (range.high - range.low) : 0.5 + offset);
  }
  return colors;
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

ColorImage preview(const FrameImage& before, const FrameImage& after) {
  const bool same_unit = before.attributes.pixel_type == after.attributes.pixel_type;
  const Range all = robust_range({&before, &after});
  const auto range_of = [&](const FrameImage& frame) { return same_unit ? all : robust_range({&frame}); };
  const std::uint32_t start = before.image.width + kGap;
  ColorImage picture{start + after.image.width, std::max(before.image.height, after.image.height), {}};
  picture.pixels.resize(std::size_t{3} * picture.width * picture.height);
  paint(before.image, colors_of(before, range_of(before)), 0, picture);
  paint(after.image, colors_of(after, range_of(after)), start, picture);
  return picture;
}

}  // namespace zvfilter
