#ifndef ZVFILTER_RUN_H
#define ZVFILTER_RUN_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "accuracy.h"
#include "frame_image.h"
#include "frame_source.h"
#include "outputs.h"
#include "plugin.h"

namespace zvfilter {

/// What one filter did to all frames.
struct FilterStatistics {
  std::string name;
  std::size_t frames = 0;
  std::uint64_t valid_before = 0;  ///< pixels that say a distance
  std::uint64_t valid_after = 0;
  std::optional<std::uint64_t> changed = 0;  ///< nothing once a frame has changed its size
  std::vector<double> milliseconds;          ///< of each frame

  void add(const FrameImage& before, const FrameImage& after, double duration_ms);
};

struct RunResults {
  std::vector<FilterStatistics> filters;
  /// Of the input, then of the frames after each filter; empty without truth.
  std::vector<Accuracy> accuracy;
};

/// Sends every frame through the chain and writes the results, each whole or not at all.
/// @param wrap_in_sets frames travel in frame sets
/// @throws Failure; what was written before stays
RunResults run_chain(std::vector<Filter>& chain, FrameSource& source,
                     const std::vector<OutputFiles>& outputs, bool wrap_in_sets);

}  // namespace zvfilter

#endif
