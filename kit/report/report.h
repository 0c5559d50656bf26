#ifndef KIT_REPORT_REPORT_H
#define KIT_REPORT_REPORT_H

#include <map>
#include <string>

#include "kit/report/measures.h"

namespace kit {

struct ReportParameter {
  std::string name;
  std::string value;
  bool is_default = true;
};

/// A step of the chain.
struct ReportStep {
  std::string filter;
  std::string tag = {};
  bool enabled = true;
  std::vector<ReportParameter> parameters = {};
};

/// What else is to be said of the chain.
struct ReportTable {
  std::string title;
  std::vector<std::vector<std::string>> rows;  ///< the first is the heading
  std::vector<std::string> sentences;          ///< below it
};

struct ReportSettings {
  std::string input;       ///< what the frames are, in a few words
  std::string command;     ///< that makes this run again
  std::string chain_file;  ///< the chain as the text of a chain file
  std::vector<ReportStep> steps;
  std::vector<std::size_t> frames = {};  ///< shown in any case, by number from 0
  std::string against = {};              ///< where the results of the other run are; empty: there is none
  std::optional<std::size_t> last = {};  ///< number of the frame that is sure to be the last
  std::vector<ReportTable> tables = {};
  std::size_t most_bytes = 10'000'000;  ///< of the page, whose details give way
};

/// A frame that is shown.
struct ReportFrame {
  std::size_t index = 0;
  std::string label;
  std::vector<ReportStage> stages;
  std::vector<StageMeasures> measures;  ///< of each stage
  std::optional<ReportStage> other;     ///< the other run's result
  std::optional<StageMeasures> other_measures;
};

/// A page about a chain of filters and a sequence of frames: HTML that needs no other file, and no script to be read.
class Report {
 public:
  explicit Report(ReportSettings settings) : settings_(std::move(settings)) {}

  /// The next frame. Its pixels are copied if it may be shown.
  /// @param stages the frame as it came and after each step that is on; at least one
  /// @param truth depth in millimetres, of the first stage's size; may be null
  /// @param other pixels that another run made of it; may be null
  void add_frame(std::size_t index, std::string label, const std::vector<StageView>& stages,
                 const Image* truth = nullptr, const Image* other = nullptr);
  /// Over all frames, by a stage's number; none without truth.
  void set_accuracy(std::vector<AccuracySummary> accuracy) { accuracy_ = std::move(accuracy); }

  /// @throws Error when no frame was added
  std::string html() const;

  const ReportSettings& settings() const { return settings_; }
  /// The first frame, the last, the one that changed most, and those asked for.
  const std::map<std::size_t, ReportFrame>& shown() const { return shown_; }
  const ReportFrame& last() const { return shown_.at(last_); }
  std::size_t most_changed() const { return most_changed_; }
  /// Of every stage, frame after frame.
  const std::vector<std::vector<StageMeasures>>& measures() const { return measures_; }
  const std::vector<AccuracySummary>& accuracy() const { return accuracy_; }
  const std::optional<Accuracy>& other_accuracy() const { return other_accuracy_; }
  const std::vector<std::size_t>& indexes() const { return indexes_; }

 private:
  bool is_wanted(std::size_t index) const;

  ReportSettings settings_;
  std::map<std::size_t, ReportFrame> shown_;
  std::vector<std::vector<StageMeasures>> measures_;
  std::vector<AccuracySummary> accuracy_;
  std::optional<Accuracy> other_accuracy_;
  std::vector<std::size_t> indexes_;
  std::size_t last_ = 0;
  std::size_t most_changed_ = 0;
  double most_change_ = -1;
};

/// The stages that show what a whole chain does: the last, and the first that says the same unit, or else the first.
struct Ends {
  std::size_t before;
  std::size_t after;
};
Ends ends_of(const std::vector<ReportStage>& stages);

}  // namespace kit

#endif
