#ifndef FILTERPROCESSOR_TESTS_KIT_FILTER_RUN_H
#define FILTERPROCESSOR_TESTS_KIT_FILTER_RUN_H

#include <string>
#include <vector>

#include "kit/chain/chain_file.h"
#include "kit/pipeline/sequence.h"
#include "kit/plugin/plugin.h"

namespace kit {

/// Those of the project's own plug-in.
inline const FilterLibrary& own_filters() {
  static const FilterLibrary library = load_plugin(KIT_FILTER_PLUGIN);
  return library;
}

using Frames = std::vector<Frame>;

/// What a chain makes of a sequence.
inline Frames run_chain(const std::string& chain, const Frames& inputs) {
  const FrameSource source = {std::vector<FrameName>(inputs.size()), [&](std::size_t i) {
                                return SourceFrame{inputs[i], std::nullopt};
                              }};
  Pipeline pipeline(own_filters(), parse_chain(chain, "chain").steps);
  Frames results;
  SequenceVisitor visitor;
  visitor.on_result = [&](std::size_t, const SourceFrame&, const FrameView& result) {
    results.push_back(frame_of(result));
  };
  run_sequence(source, pipeline, {}, visitor);
  return results;
}

/// @param options as of the input camera:
inline Frames camera_frames(const std::string& options) {
  const FrameSource source =
      camera_source(make_camera_request(parse_camera_input("camera:" + options)), {});
  Frames frames;
  for (std::size_t i = 0; i < source.names.size(); ++i) frames.push_back(source.load(i).frame);
  return frames;
}

}  // namespace kit

#endif
