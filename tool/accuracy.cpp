#include "accuracy.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace zvfilter {

namespace {

double ratio(std::uint64_t part, std::uint64_t whole) {
  return static_cast<double>(part) / static_cast<double>(whole);
}

}  // namespace

void Distribution::add(double millimetres) {
  ++counts_[static_cast<std::uint64_t>(std::min(1e12, millimetres) * 1000 + 0.5)];
  ++count_;
}

std::optional<double> Distribution::quantile(double part) const {
  if (count_ == 0) return std::nullopt;
  std::vector<std::pair<std::uint64_t, std::uint64_t>> sorted(counts_.begin(), counts_.end());
  std::sort(sorted.begin(), sorted.end());
  const double wanted = part * static_cast<double>(count_);
  std::uint64_t seen = 0;
  for (const auto& [micrometres, count] : sorted) {
    seen += count;
    if (static_cast<double>(seen) >= wanted) return static_cast<double>(micrometres) / 1000;
  }
  return static_cast<double>(sorted.back().first) / 1000;
}

void Accuracy::add(const FrameImage& frame, const Image& truth) {
  const Image& depth = frame.image;
  if (frame.attributes.pixel_type == ZV_PIXEL_TYPE_DISPARITY || depth.width != truth.width ||
      depth.height != truth.height) {
    comparable_ = false;
  }
  if (!comparable_) return;
  const auto scale = static_cast<double>(frame.attributes.value_scale);
  add_errors(depth, truth, scale);
  if (depth.width == last_depth_.width && depth.height == last_depth_.height) {
    add_changes(depth, truth, scale);
  }
  last_depth_ = depth;
  last_truth_ = truth;
  last_scale_ = scale;
}

void Accuracy::add_errors(const Image& depth, const Image& truth, double scale) {
  pixels_ += depth.pixels.size();
  for (std::size_t i = 0; i < depth.pixels.size(); ++i) {
    if (depth.pixels[i] == 0) continue;
    ++valid_;
    if (truth.pixels[i] == 0) continue;
    const double error = std::abs(depth.pixels[i] * scale - truth.pixels[i]);
    errors_.add(error);
    off_ += 20 * error > truth.pixels[i];
  }
}

void Accuracy::add_changes(const Image& depth, const Image& truth, double scale) {
  for (std::size_t i = 0; i < depth.pixels.size(); ++i) {
    const bool still = truth.pixels[i] != 0 && truth.pixels[i] == last_truth_.pixels[i];
    if (!still || depth.pixels[i] == 0 || last_depth_.pixels[i] == 0) continue;
    changes_.add(std::abs(depth.pixels[i] * scale - last_depth_.pixels[i] * last_scale_));
  }
}

std::optional<double> Accuracy::coverage() const {
  if (!comparable_ || pixels_ == 0) return std::nullopt;
  return ratio(valid_, pixels_);
}

std::optional<double> Accuracy::median() const {
  return comparable_ ? errors_.quantile(0.5) : std::nullopt;
}

std::optional<double> Accuracy::percentile95() const {
  return comparable_ ? errors_.quantile(0.95) : std::nullopt;
}

std::optional<double> Accuracy::off() const {
  if (!comparable_ || errors_.count() == 0) return std::nullopt;
  return ratio(off_, errors_.count());
}

std::optional<double> Accuracy::flicker() const {
  return comparable_ ? changes_.quantile(0.5) : std::nullopt;
}

}  // namespace zvfilter
