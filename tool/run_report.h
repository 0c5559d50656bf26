#ifndef ZVFILTER_RUN_REPORT_H
#define ZVFILTER_RUN_REPORT_H

#include <string>
#include <vector>

#include "kit/pipeline/sequence.h"
#include "kit/report/report.h"
#include "options.h"

namespace zvfilter {

/// The page about a run, fed as the run goes on.
class RunReport {
 public:
  /// @throws kit::Error when a frame asked for isn't in the source or the other run lacks a result
  RunReport(const RunOptions& options, const kit::Pipeline& pipeline, const kit::FrameSource& source,
            std::vector<kit::ReportTable> tables = {});

  /// The passage's frames have to stay until end_frame().
  void add(const kit::Passage& passage, const kit::AccuracySummary& accuracy);
  void end_frame(std::size_t index, const kit::SourceFrame& input);
  void write(const kit::ChainResults& results);

 private:
  std::filesystem::path file_;
  kit::Report report_;
  std::vector<kit::FrameName> names_;
  std::vector<std::filesystem::path> others_;  ///< the other run's results; may be empty
  std::vector<kit::StageView> stages_;         ///< of the frame on its way
};

/// The words as a shell takes them.
std::string command_text(const std::vector<std::string>& words);

}  // namespace zvfilter

#endif
