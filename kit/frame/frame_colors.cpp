#include "kit/frame/frame_colors.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kit/frame/depth_reader.h"

namespace kit {

namespace {

/// By pixel value.
std::vector<double> depths_of(const FrameView& frame) {
  const DepthReader reader(frame);
  std::vector<double> depths(kSampleValues);
  for (std::size_t value = 0; value < depths.size(); ++value)
    depths[value] = reader.millimetres(static_cast<std::uint16_t>(value));
  return depths;
}

/// The smallest of the values, each there so many times, with more than `place` up to it.
double value_at(const std::vector<std::pair<double, std::uint64_t>>& sorted, std::uint64_t place) {
  std::uint64_t seen = 0;
  for (const auto& [value, count] : sorted) {
    seen += count;
    if (seen > place) return value;
  }
  return sorted.back().first;
}

}  // namespace

std::optional<DepthRange> depth_range(std::initializer_list<FrameView> frames) {
  std::vector<std::pair<double, std::uint64_t>> counted;
  std::uint64_t valid = 0;
  for (const FrameView& frame : frames) {
    std::vector<std::uint64_t> histogram(kSampleValues);
    for (const std::uint16_t pixel : frame.pixels) ++histogram[pixel];
    const std::vector<double> depths = depths_of(frame);
    for (std::size_t value = 0; value < kSampleValues; ++value) {
      if (histogram[value] == 0 || depths[value] == 0) continue;
      counted.emplace_back(depths[value], histogram[value]);
      valid += histogram[value];
    }
  }
  if (valid == 0) return std::nullopt;
  std::sort(counted.begin(), counted.end());
  return DepthRange{value_at(counted, valid / 50), value_at(counted, valid - 1 - valid / 50)};
}

ColorImage color_image(const FrameView& frame, const DepthRange& range, ColorMap map) {
  const std::vector<double> depths = depths_of(frame);
  std::vector<Rgb> colors(kSampleValues, hole_color(map));
  for (std::size_t value = 0; value < kSampleValues; ++value) {
    if (depths[value] == 0) continue;
    const double offset = depths[value] - range.near;
    colors[value] =
        color_of(map, range.far > range.near ? offset / (range.far - range.near) : 0.5 + offset);
  }
  ColorImage picture{frame.width, frame.height, std::vector<Rgb>(frame.pixels.size())};
  std::transform(frame.pixels.begin(), frame.pixels.end(), picture.pixels.begin(),
                 [&](std::uint16_t pixel) { return colors[pixel]; });
  return picture;
}

double change_limit(const FrameView& before, const FrameView& after) {
  const std::vector<double> old_depths = depths_of(before), new_depths = depths_of(after);
  std::vector<double> changes;
  for (std::size_t i = 0; i < before.pixels.size(); ++i) {
    const double from = old_depths[before.pixels[i]], to = new_depths[after.pixels[i]];
    if (from != 0 && to != 0 && from != to) changes.push_back(std::abs(to - from));
  }
  if (changes.empty()) return 0;
  const auto place = changes.begin() + static_cast<std::ptrdiff_t>((changes.size() - 1) * 98 / 100);
  std::nth_element(changes.begin(), place, changes.end());
  return *place;
}

ColorImage difference_image(const FrameView& before, const FrameView& after, double limit) {
  const std::vector<double> old_depths = depths_of(before), new_depths = depths_of(after);
  const HoleColors colors;
  const auto color = [&](double from, double to) {
    if (from == 0) return to == 0 ? colors.hole : colors.filled;
    if (to == 0) return colors.removed;
    return signed_color(limit > 0 ? (to - from) / limit : to - from);
  };
  ColorImage picture{after.width, after.height, std::vector<Rgb>(after.pixels.size())};
  for (std::size_t i = 0; i < picture.pixels.size(); ++i)
    picture.pixels[i] = color(old_depths[before.pixels[i]], new_depths[after.pixels[i]]);
  return picture;
}

}  // namespace kit
