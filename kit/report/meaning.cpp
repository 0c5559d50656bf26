#include "kit/report/meaning.h"

#include <algorithm>
#include <limits>
#include <map>

#include "kit/frame/pixel_reader.h"

namespace kit {

Unit::Unit(const FrameView& frame)
    : is_depth_(frame.pixel_type != ZV_PIXEL_TYPE_DISPARITY),
      falls_(!is_depth_ && frame.disparity.packMode != 1) {}

Meaning::Meaning(const Frame& frame)
    : scale_(Unit(frame).is_depth() ? static_cast<double>(frame.value_scale) : 1),
      values_(kSampleValues, std::numeric_limits<double>::quiet_NaN()) {
  const PixelReader reader(frame);
  for (std::size_t pixel = 0; pixel < kSampleValues; ++pixel) {
    const auto rank = reader.distance_rank(static_cast<std::uint16_t>(pixel));
    if (rank) values_[pixel] = *rank * scale_;
  }
}

void ValueCounts::add(const Frame& frame) {
  const Meaning meaning(frame);
  std::vector<std::uint64_t> of_pixel(kSampleValues);
  for (const std::uint16_t pixel : frame.pixels) ++of_pixel[pixel];
  for (std::size_t pixel = 0; pixel < kSampleValues; ++pixel) {
    const double value = meaning(static_cast<std::uint16_t>(pixel));
    if (of_pixel[pixel] > 0 && value == value) counts_.emplace_back(value, of_pixel[pixel]);
  }
  total_ += frame.pixels.size();
}

std::vector<std::pair<double, std::uint64_t>> ValueCounts::sorted() const {
  std::map<double, std::uint64_t> merged;
  for (const auto& [value, count] : counts_) merged[value] += count;
  return {merged.begin(), merged.end()};
}

Interval ValueCounts::robust_range() const {
  const auto values = sorted();
  std::uint64_t valid = 0;
  for (const auto& [value, count] : values) valid += count;
  if (valid == 0) return {};
  const auto value_at = [&](std::uint64_t place) {
    std::size_t at = 0;
    for (std::uint64_t seen = values[0].second; seen <= place; seen += values[at].second) ++at;
    return values[at].first;
  };
  const Interval range{value_at(valid / 100), value_at(valid - 1 - valid / 100)};
  return range.high > range.low ? range : Interval{range.low - 1, range.low + 1};
}

std::vector<double> ValueCounts::shares(const Interval& range, std::size_t steps) const {
  std::vector<double> result(steps);
  const double width = (range.high - range.low) / static_cast<double>(steps);
  for (const auto& [value, count] : counts_) {
    if (value < range.low || value > range.high) continue;
    const auto step = std::min(static_cast<std::size_t>((value - range.low) / width), steps - 1);
    result[step] += static_cast<double>(count) / static_cast<double>(total_);
  }
  return result;
}

}  // namespace kit
