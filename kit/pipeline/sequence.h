#ifndef KIT_PIPELINE_SEQUENCE_H
#define KIT_PIPELINE_SEQUENCE_H

#include <functional>
#include <optional>
#include <vector>

#include "kit/chain/pipeline.h"
#include "kit/measure/accuracy.h"
#include "kit/measure/filter_statistics.h"
#include "kit/pipeline/frame_source.h"

namespace kit {

/// A frame on its way through a chain.
struct Passage {
  std::size_t number;  ///< 0: as it came; n: as the chain's n-th step made it
  FrameView before;    ///< what the step was given; at 0 the frame itself
  FrameView frame;
  double milliseconds;  ///< that the filter took
};

/// What is done with the frames of a sequence; any may be empty.
struct SequenceVisitor {
  /// In the order of the frames.
  std::function<void(const SourceFrame& input, const Passage& passage)> on_passage;
  /// In the order of the frames, when it has passed all steps.
  std::function<void(std::size_t index, const SourceFrame& input, const FrameView& result)> on_filtered;
  /// In any order and by several threads at once, unless results are taken in order.
  std::function<void(std::size_t index, const SourceFrame& input, const FrameView& result)> on_result;
  /// In the order of the frames, when the result has been taken.
  std::function<void(std::size_t index)> on_done;
  /// The same for a frame that failed; the next ones go on. Empty: the first failure ends the sequence.
  std::function<void(const Error& problem)> on_problem;
};

struct SequenceOptions {
  Handover handover = Handover::frame;
  std::size_t frames_in_flight = 1;  ///< between being loaded and done; 1: no other threads
  std::function<bool()> stop;        ///< asked before each frame; those under way are finished
  bool results_in_order = false;     ///< one at a time
};

/// Sends the frames of the source through the pipeline, in their order; they are loaded and their results taken side by
/// side, by the workers whose work this is.
/// @throws Error of the first frame that fails, which it names; all frames before it are done
void run_sequence(const FrameSource& source, Pipeline& pipeline, const SequenceOptions& options,
                  const SequenceVisitor& visitor);

/// What a chain did to the frames of a sequence.
struct ChainResults {
  explicit ChainResults(const Chain& chain);
  /// @return how near the frame is to the truth, as Accuracy::add() says it
  AccuracySummary add(const Passage& passage, const std::optional<Image>& truth);
  /// What the same chain did to another sequence.
  void add(const ChainResults& other);

  std::vector<FilterStatistics> filters;
  /// Of the input, then of the frames after each filter; empty without truth.
  std::vector<Accuracy> accuracy;
};

}  // namespace kit

#endif
