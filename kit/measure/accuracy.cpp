#include "kit/measure/accuracy.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "kit/frame/pixel_reader.h"

namespace kit {

namespace {

double ratio(std::uint64_t part, std::uint64_t whole) {
  return static_cast<double>(part) / static_cast<double>(whole);
}

/// In millimetres, 0 where invalid.
std::vector<double> depth_of(const FrameView& frame) {
  const PixelReader reader(frame);
  const auto scale = static_cast<double>(frame.value_scale);
  std::vector<double> depth(frame.pixels.size());
  std::transform(frame.pixels.begin(), frame.pixels.end(), depth.begin(),
                 [&](std::uint16_t pixel) { return reader.distance_rank(pixel).value_or(0) * scale; });
  return depth;
}

}  // namespace

void Distribution::add(double millimetres) {
  ++counts_[static_cast<std::uint64_t>(std::min(1e12, millimetres) * 1000 + 0.5)];
  ++count_;
}

void Distribution::add(const Distribution& other) {
  for (const auto& [micrometres, count] : other.counts_) counts_[micrometres] += count;
  count_ += other.count_;
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

AccuracySummary Accuracy::add(const FrameView& frame, const Image& truth) {
  if (frame.pixel_type == ZV_PIXEL_TYPE_DISPARITY || frame.width != truth.width ||
      frame.height != truth.height) {
    comparable_ = false;
  }
  if (!comparable_) return {};
  std::vector<double> depth = depth_of(frame);
  const Accuracy frame_alone = errors_of(depth, truth);
  add(frame_alone);
  if (truth.width == last_truth_.width && truth.height == last_truth_.height) add_changes(depth, truth);
  last_depth_ = std::move(depth);
  last_truth_ = truth;
  return frame_alone.summary();
}

void Accuracy::add(const Accuracy& other) {
  comparable_ = comparable_ && other.comparable_;
  pixels_ += other.pixels_;
  valid_ += other.valid_;
  off_ += other.off_;
  errors_.add(other.errors_);
  changes_.add(other.changes_);
}

Accuracy Accuracy::errors_of(const std::vector<double>& depth, const Image& truth) {
  Accuracy found;
  found.pixels_ = depth.size();
  for (std::size_t i = 0; i < depth.size(); ++i) {
    if (depth[i] == 0) continue;
    ++found.valid_;
    if (truth.pixels[i] == 0) continue;
    const double error = std::abs(depth[i] - truth.pixels[i]);
    found.errors_.add(error);
    found.off_ += 20 * error > truth.pixels[i];
  }
  return found;
}

void Accuracy::add_changes(const std::vector<double>& depth, const Image& truth) {
  for (std::size_t i = 0; i < depth.size(); ++i) {
    const bool still = truth.pixels[i] != 0 && truth.pixels[i] == last_truth_.pixels[i];
    if (still && depth[i] != 0 && last_depth_[i] != 0) changes_.add(std::abs(depth[i] - last_depth_[i]));
  }
}

AccuracySummary Accuracy::summary() const {
  AccuracySummary summary;
  if (!comparable_ || pixels_ == 0) return summary;
  summary.coverage = ratio(valid_, pixels_);
  summary.median = errors_.quantile(0.5);
  summary.percentile95 = errors_.quantile(0.95);
  if (errors_.count() > 0) summary.off = ratio(off_, errors_.count());
  summary.flicker = changes_.quantile(0.5);
  return summary;
}

}  // namespace kit
