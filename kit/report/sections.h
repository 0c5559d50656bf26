#ifndef KIT_REPORT_SECTIONS_H
#define KIT_REPORT_SECTIONS_H

#include <string>
#include <vector>

#include "kit/report/sequence.h"

namespace kit {

// What a page has beside its pictures. All are HTML.

/// What the run was of, and its steps.
std::string header_of(const ReportSettings& settings);
/// What the whole chain did, in a few numbers.
std::string key_figures(const Report& report, const std::vector<StageTotals>& totals);
/// What was measured beside the run.
std::string tables_of(const ReportSettings& settings);
/// Beside the other run's result; empty where there is none.
std::string comparison(const ReportFrame& frame, const std::string& against);
/// Of a frame before and after the chain; empty where their units differ.
std::string histogram_of(const ReportFrame& frame);
std::string parameters_of(const ReportStep& step);
/// What a step did to a frame.
std::string facts_of(const StageMeasures& before, const StageMeasures& after);
/// The chain to copy, as command and as file.
std::string chain_again(const ReportSettings& settings);

}  // namespace kit

#endif
