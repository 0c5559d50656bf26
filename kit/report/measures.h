#ifndef KIT_REPORT_MEASURES_H
#define KIT_REPORT_MEASURES_H

#include <optional>
#include <vector>

#include "kit/measure/accuracy.h"

namespace kit {

/// A frame at one place of a chain.
template <typename AnyFrame>
struct Staged {
  std::size_t number;  ///< 0: as it came; n: as the chain's n-th step made it
  AnyFrame frame;
  double milliseconds = 0;        ///< that the step took
  AccuracySummary accuracy = {};  ///< of this frame alone
};
using ReportStage = Staged<Frame>;
using StageView = Staged<FrameView>;

/// What is measured of a stage of one frame. What cannot be measured is nothing.
struct StageMeasures {
  std::size_t number = 0;
  double milliseconds = 0;
  double coverage = 0;  ///< share of the pixels that are valid
  std::optional<double> changed =
      std::nullopt;               ///< share of the pixels that differ from the stage before
  AccuracySummary accuracy = {};  ///< of this frame alone
};

/// @param before the stage before; null for the first
StageMeasures measure(const StageView& stage, const FrameView* before);

/// Share of the pixels that differ; nothing between sizes or units.
std::optional<double> changed_share(const FrameView& before, const FrameView& after);

}  // namespace kit

#endif
