#ifndef KIT_MEASURE_FILTER_STATISTICS_H
#define KIT_MEASURE_FILTER_STATISTICS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kit/frame/frame.h"

namespace kit {

/// What one filter did to all frames.
struct FilterStatistics {
  std::string name;
  std::size_t frames = 0;
  std::uint64_t valid_before = 0;  ///< pixels that say a distance
  std::uint64_t valid_after = 0;
  std::optional<std::uint64_t> changed = 0;  ///< nothing once a frame has changed its size
  std::vector<double> milliseconds;          ///< of each frame

  void add(const FrameView& before, const FrameView& after, double duration_ms);
  /// What the same filter did to other frames.
  void add(const FilterStatistics& other);
  /// Nothing without frames.
  std::optional<double> median_milliseconds() const;
};

}  // namespace kit

#endif
