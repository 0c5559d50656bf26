#ifndef KIT_PIPELINE_SEQUENCE_H
#define KIT_PIPELINE_SEQUENCE_H

#include <functional>
#include <optional>
#include <vector>

#include "kit/measure/accuracy.h"
#include "kit/measure/filter_statistics.h"
#include "kit/pipeline/frame_source.h"
#include "kit/pipeline/pipeline.h"

namespace kit {

/// What is done with the frames of a sequence; either may be empty.
struct SequenceVisitor {
  std::function<void(const SourceFrame& input, const Stage& stage)> on_stage;
  std::function<void(std::size_t index, const SourceFrame& input, const Frame& result)> on_result;
};

/// Sends every frame of the source through the pipeline.
/// @throws Error, which names the frame
void run_sequence(const FrameSource& source, Pipeline& pipeline, Handover handover,
                  const SequenceVisitor& visitor);

/// What a chain did to the frames of a sequence.
struct ChainResults {
  explicit ChainResults(const Chain& chain);
  void add(const Stage& stage, const std::optional<Image>& truth);

  std::vector<FilterStatistics> filters;
  /// Of the input, then of the frames after each filter; empty without truth.
  std::vector<Accuracy> accuracy;
};

}  // namespace kit

#endif
