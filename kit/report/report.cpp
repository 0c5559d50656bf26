#include "kit/report/report.h"

#include <algorithm>

#include "kit/common/error.h"
#include "kit/report/meaning.h"
#include "kit/report/page.h"

namespace kit {

Ends ends_of(const std::vector<ReportStage>& stages) {
  const std::size_t last = stages.size() - 1;
  const Unit unit(stages[last].frame);
  for (std::size_t i = 0; i < last; ++i) {
    if (Unit(stages[i].frame) == unit) return {i, last};
  }
  return {0, last};
}

bool Report::is_wanted(std::size_t index) const {
  const auto& asked = settings_.frames;
  return index == indexes_.front() || index == most_changed_ || index == settings_.last.value_or(last_) ||
         std::find(asked.begin(), asked.end(), index) != asked.end();
}

void Report::add_frame(std::size_t index, std::string label, const std::vector<StageView>& stages,
                       const Image* truth, const Image* other) {
  ReportFrame frame{index, std::move(label), {}, {}, std::nullopt, std::nullopt};
  const FrameView* before = nullptr;
  double change = 0;
  for (const StageView& stage : stages) {
    frame.measures.push_back(measure(stage, before));
    change += frame.measures.back().changed.value_or(0);
    before = &stage.frame;
  }
  if (other != nullptr) {
    StageView made = stages.back();
    made.frame.width = other->width;
    made.frame.height = other->height;
    made.frame.pixels = other->pixels;
    if (truth != nullptr && !other_accuracy_) other_accuracy_.emplace();
    if (truth != nullptr) made.accuracy = other_accuracy_->add(made.frame, *truth);
    frame.other_measures = measure(made, before);
    frame.other = {made.number, frame_of(made.frame), made.milliseconds, made.accuracy};
  }
  if (change > most_change_) {
    most_change_ = change;
    most_changed_ = index;
  }
  last_ = index;
  indexes_.push_back(index);
  measures_.push_back(frame.measures);
  if (is_wanted(index)) {
    for (const StageView& stage : stages)
      frame.stages.push_back({stage.number, frame_of(stage.frame), stage.milliseconds, stage.accuracy});
    shown_.insert_or_assign(index, std::move(frame));
  }
  std::erase_if(shown_, [this](const auto& entry) { return !is_wanted(entry.first); });
}

std::string Report::html() const {
  if (shown_.empty()) fail("there is no frame to report");
  return page_of(*this);
}

}  // namespace kit
