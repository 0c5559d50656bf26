#ifndef ZVFILTER_RUN_H
#define ZVFILTER_RUN_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "frame_source.h"
#include "outputs.h"
#include "plugin.h"

namespace zvfilter {

/// What one filter did to all frames.
struct FilterStatistics {
  std::string name;
  std::size_t frames = 0;
  std::uint64_t valid_before = 0;  ///< pixels other than 0
  std::uint64_t valid_after = 0;
  std::optional<std::uint64_t> changed = 0;  ///< nothing once a frame has changed its size
  std::vector<double> milliseconds;          ///< of each frame

  void add(const Image& before, const Image& after, double duration_ms);
};

/// Sends every frame through the chain and writes the results, each whole or not at all.
/// @param wrap_in_sets frames travel in frame sets
/// @throws Failure; what was written before stays
std::vector<FilterStatistics> run_chain(std::vector<Filter>& chain, FrameSource& source,
                                        const std::vector<OutputFiles>& outputs, bool wrap_in_sets);

}  // namespace zvfilter

#endif
