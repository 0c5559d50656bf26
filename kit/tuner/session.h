#ifndef KIT_TUNER_SESSION_H
#define KIT_TUNER_SESSION_H

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kit/chain/pipeline.h"
#include "kit/measure/accuracy.h"
#include "kit/measure/filter_statistics.h"
#include "kit/tuner/frame_cache.h"

namespace kit::tuner {

/// A chain whose steps have names of their own, by which one is known again wherever it has moved.
struct NamedChain {
  Chain steps;
  std::vector<std::string> names;  ///< one for each step, no two the same
};

/// What one step, or all of them, did to one frame.
struct StepFigures {
  FilterStatistics statistics;
  std::size_t pixels_before = 0, pixels_after = 0;

  void add(const FrameView& before, const FrameView& after, double milliseconds);
};

/// A frame of the sequence, as it came and as the chain made it.
struct ShownFrame {
  std::size_t index = 0;
  std::size_t first = 0;   ///< the frame before which the filters were as new
  bool restarted = false;  ///< whether that was done for this frame
  std::shared_ptr<const SourceFrame> input;
  Frame result;
  std::vector<std::optional<StepFigures>> steps;  ///< nothing for a step that is off
  StepFigures whole;
};

/// What one page looks at: a chain at work and its place in the sequence. For one thread at a time.
///
/// The filters see frames as a camera would give them: the frame after the last one continues the sequence, and whatever
/// changed in the chain acts from it on. Any other frame starts it anew. For a change at the frame that is shown, the filters
/// start so many frames before it that the first of them has less than a twentieth of the result, at most kMostRunUp.
class Session {
 public:
  static constexpr std::size_t kMostRunUp = 15;

  Session(const FilterLibrary& library, FrameCache& frames) : library_(library), frames_(frames) {}

  /// @param index below the number of frames
  /// @throws Error of the step or frame that is wrong; what was shown stays
  const ShownFrame& show(std::size_t index, const NamedChain& chain);
  /// How far the frame shown is from the truth, before and after the chain; nothing without a truth.
  std::optional<std::pair<AccuracySummary, AccuracySummary>> accuracy() const;

 private:
  void take(const NamedChain& chain);
  std::size_t run_up() const;
  void run(std::size_t first, std::size_t last, ShownFrame& shown);

  const FilterLibrary& library_;
  FrameCache& frames_;
  std::optional<Pipeline> pipeline_;  // nothing: it failed
  std::vector<std::string> names_;    // of its steps
  std::string chain_;                 // as a text that differs where chains do
  std::optional<ShownFrame> shown_;
};

}  // namespace kit::tuner

#endif
