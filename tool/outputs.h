#ifndef ZVFILTER_OUTPUTS_H
#define ZVFILTER_OUTPUTS_H

#include <filesystem>
#include <optional>
#include <vector>

#include "kit/image/codec.h"
#include "kit/pipeline/frame_source.h"

namespace zvfilter {

struct OutputSettings {
  std::filesystem::path folder;
  std::optional<const kit::Codec*> format;  ///< nothing: each frame's own
  bool preview = false;
  bool sync = false;  ///< each result, not only the last of a run
};

/// Where one frame's results go.
struct OutputFiles {
  const kit::Codec* format = nullptr;
  std::filesystem::path image;
  std::filesystem::path preview;  ///< empty: none
};

/// Names the results of every frame.
/// @throws kit::Error when there is no folder, two would have one name or one would replace an input
std::vector<OutputFiles> plan_outputs(const kit::FrameSource& source, const OutputSettings& settings);

/// Writes each of the files whole or not at all.
/// @throws kit::Error
void write_results(const OutputFiles& files, const kit::Frame& before, const kit::Frame& after,
                   kit::Durability durability);

}  // namespace zvfilter

#endif
