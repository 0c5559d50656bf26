#include "kit/frame/frame_colors.h"

#include <algorithm>

#include "kit/frame/pixel_reader.h"
#include "kit/image/color_map.h"

namespace kit {

namespace {

constexpr std::int32_t kFarthest = 65535;  // distance rank

}  // namespace

DistanceRange distance_range(std::initializer_list<const Frame*> frames) {
  std::vector<std::uint64_t> histogram(2 * kFarthest + 1);  // of distance ranks
  std::uint64_t valid = 0;
  for (const Frame* frame : frames) {
    const PixelReader reader(*frame);
    for (const std::uint16_t pixel : frame->pixels) {
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

ColorImage color_image(const Frame& frame, const DistanceRange& range) {
  const PixelReader reader(frame);
  std::vector<Rgb> colors(65536);  // of every pixel value
  for (std::size_t value = 0; value < colors.size(); ++value) {
    const auto rank = reader.distance_rank(static_cast<std::uint16_t>(value));
    if (!rank) continue;
    const double offset = *rank - range.low;
    colors[value] = rainbow(range.high > range.low ? offset / (range.high - range.low) : 0.5 + offset);
  }
  ColorImage picture{frame.width, frame.height, std::vector<Rgb>(frame.pixels.size())};
  std::transform(frame.pixels.begin(), frame.pixels.end(), picture.pixels.begin(),
                 [&](std::uint16_t pixel) { return colors[pixel]; });
  return picture;
}

}  // namespace kit
