#ifndef ZVFILTER_OUTPUTS_H
#define ZVFILTER_OUTPUTS_H

#include <filesystem>
#include <vector>

#include "frame_source.h"
#include "images/codec.h"

namespace zvfilter {

struct OutputSettings {
  std::filesystem::path folder;
  const Codec* format = nullptr;  ///< null: each frame's own
  bool preview = false;
};

/// Where one frame's results go.
struct OutputFiles {
  const Codec* format = nullptr;
  std::filesystem::path image;
  std::filesystem::path preview;  ///< empty: none
};

/// Names the results of every frame.
/// @throws Failure when two would have one name or one would replace an input
std::vector<OutputFiles> plan_outputs(const FrameSource& source, const OutputSettings& settings);

}  // namespace zvfilter

#endif
