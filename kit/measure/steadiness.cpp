#include "kit/measure/steadiness.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "kit/frame/depth_reader.h"

namespace kit {

namespace {

constexpr double kLatticePixels = 16384;
constexpr double kMostDeviations = 5, kMostDrift = 1.2, kLeastDeviation = 0.001;

std::vector<float> lattice_of(const FrameView& frame) {
  const double pixels = double{1} * frame.width * frame.height;
  const auto step =
      static_cast<std::size_t>(std::ceil(std::sqrt(std::max(pixels / kLatticePixels, 1.0))));
  const DepthReader reader(frame);
  std::vector<float> depths;
  for (std::size_t y = step / 2; y < frame.height; y += step) {
    for (std::size_t x = step / 2; x < frame.width; x += step)
      depths.push_back(static_cast<float>(reader.millimetres(frame.pixels[y * frame.width + x])));
  }
  return depths;
}

double median(std::vector<float> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  if (values.size() % 2 != 0) return *middle;
  return (*std::max_element(values.begin(), middle) + *middle) / 2;
}

std::vector<float> valid_values(std::span<const std::vector<float>> frames, std::size_t pixel) {
  std::vector<float> values;
  for (const auto& frame : frames) {
    if (frame[pixel] != 0) values.push_back(frame[pixel]);
  }
  return values;
}

double deviation(std::vector<float> values, double centre) {
  for (float& value : values) value = std::abs(value - static_cast<float>(centre));
  return 1.4826 * median(std::move(values));
}

bool enough(const std::vector<float>& values, std::size_t frames) {
  return 4 * values.size() >= 3 * frames;
}

}  // namespace

bool is_at_rest(const std::vector<float>& values, std::size_t frames) {
  if (!enough(values, frames)) return false;
  const double centre = median(values);
  const double least = std::max(deviation(values, centre), kLeastDeviation * centre);
  const bool close = std::all_of(values.begin(), values.end(), [&](float value) {
    return std::abs(value - centre) <= kMostDeviations * least;
  });
  const std::size_t half = values.size() / 2;
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(half);
  const double drift = median({values.begin(), middle}) - median({middle, values.end()});
  return close && std::abs(drift) <= kMostDrift * least;
}

void Steadiness::add(const FrameView& before, const FrameView& after) {
  if (width_ == 0) {
    width_ = before.width;
    height_ = before.height;
  }
  if (before.width != width_ || before.height != height_) {  // another sequence
    end_window();
    width_ = before.width;
    height_ = before.height;
  }
  if (after.width != before.width || after.height != before.height) comparable_ = false;
  old_.window.push_back(lattice_of(before));
  if (comparable_) new_.window.push_back(lattice_of(after));
  if (old_.window.size() == kWindow) end_window();
}

void Steadiness::end_window() {
  const std::size_t frames = old_.window.size();
  if (frames >= kLeastFrames) {
    const std::size_t pixels = old_.window.front().size();
    looked_at_ += pixels;
    for (std::size_t pixel = 0; pixel < pixels; ++pixel) {
      if (!is_at_rest(valid_values(old_.window, pixel), frames)) continue;
      measure(old_, pixel);
      if (comparable_ && enough(valid_values(new_.window, pixel), frames)) measure(new_, pixel);
    }
  }
  old_.window.clear();
  new_.window.clear();
}

void Steadiness::measure(Side& side, std::size_t pixel) {
  ++side.used;
  const std::vector<float> values = valid_values(side.window, pixel);
  side.deviations.add(deviation(values, median(values)));
  for (std::size_t i = 1; i < side.window.size(); ++i) {
    const double now = side.window[i][pixel], last = side.window[i - 1][pixel];
    if (now != 0 && last != 0) side.changes.add(std::abs(now - last));
  }
}

SteadinessSummary Steadiness::summary(const Side& side) const {
  if (looked_at_ == 0) return {};
  return {static_cast<double>(side.used) / static_cast<double>(looked_at_), side.changes.quantile(0.5),
          side.deviations.quantile(0.5)};
}

void Steadiness::finish() {
  end_window();
  before_ = summary(old_);
  if (comparable_) after_ = summary(new_);
}

}  // namespace kit
