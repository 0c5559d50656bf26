#ifndef ZVFILTER_RUN_SETUP_H
#define ZVFILTER_RUN_SETUP_H

#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

#include "kit/chain/chain.h"
#include "kit/pipeline/frame_source.h"
#include "options.h"

namespace zvfilter {

/// Frames that go through filters of their own, and where their results go.
struct Sequence {
  std::string name;                 ///< its folder's; empty where there is no other
  std::vector<std::string> inputs;  ///< as they were named
  kit::FrameSource source;
  std::filesystem::path folder;      ///< of the results; empty where none are written
  std::vector<OutputFiles> outputs;  ///< of each frame; none where there are no names for them
};

/// The name of standard input and output.
inline constexpr const char* kStandard = "-";
inline bool is_standard(const std::filesystem::path& name) { return name == kStandard; }

/// The chain of the command line, and what its file says of the input where the command line doesn't.
kit::Chain open_chain(RunOptions& options);

/// What the options name as inputs: each of several folders, or all of it.
/// @throws kit::Error
/// A camera.json beside them is said; that of files becomes the options'.
std::vector<Sequence> open_sequences(RunOptions& options, std::ostream& notes);

/// Names the results of every frame that are files.
/// @throws kit::Error as plan_outputs()
void plan_sequences(std::vector<Sequence>& sequences, const RunOptions& options);

/// Says what is assumed where a filter needs a camera's geometry and nobody gave it.
void note_nominal_camera(const RunOptions& options, const kit::Chain& chain, std::ostream& notes);

}  // namespace zvfilter

#endif
