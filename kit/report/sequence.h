#ifndef KIT_REPORT_SEQUENCE_H
#define KIT_REPORT_SEQUENCE_H

#include "kit/report/report.h"

namespace kit {

/// What is measured of a stage over all frames.
struct StageTotals {
  std::size_t number = 0;
  std::string name;
  double coverage = 0;                           ///< mean
  std::optional<double> changed = std::nullopt;  ///< mean of the frames it is known of
  double milliseconds = 0;                       ///< median
  AccuracySummary accuracy = {};
};
std::vector<StageTotals> totals_of(const Report& report);

/// "DisparityTransform", or "the input" for 0.
std::string stage_name(const Report& report, std::size_t number);

std::string totals_table(const Report& report, const std::vector<StageTotals>& totals);
/// Coverage, changes, times and errors over the frames; empty for a single frame.
std::string sequence_plots(const Report& report);

}  // namespace kit

#endif
