#include "kit/measure/filter_statistics.h"

#include <algorithm>

#include "kit/frame/pixel_reader.h"

namespace kit {

void FilterStatistics::add(const FrameView& before, const FrameView& after, double duration_ms) {
  ++frames;
  valid_before += count_valid(before);
  valid_after += count_valid(after);
  milliseconds.push_back(duration_ms);
  if (before.width != after.width || before.height != after.height) changed.reset();
  if (!changed) return;
  std::uint64_t count = 0;
  for (std::size_t i = 0; i < before.pixels.size(); ++i) count += before.pixels[i] != after.pixels[i];
  *changed += count;
}

void FilterStatistics::add(const FilterStatistics& other) {
  frames += other.frames;
  valid_before += other.valid_before;
  valid_after += other.valid_after;
  if (changed && other.changed) {
    *changed += *other.changed;
  } else {
    changed.reset();
  }
  milliseconds.insert(milliseconds.end(), other.milliseconds.begin(), other.milliseconds.end());
}

std::optional<double> FilterStatistics::median_milliseconds() const {
  if (milliseconds.empty()) return std::nullopt;
  std::vector<double> sorted = milliseconds;
  std::sort(sorted.begin(), sorted.end());
  const std::size_t middle = sorted.size() / 2;
  return sorted.size() % 2 != 0 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2;
}

}  // namespace kit
