#include "kit/report/measures.h"

#include "kit/frame/pixel_reader.h"
#include "kit/report/pictures.h"

namespace kit {

std::optional<double> changed_share(const FrameView& before, const FrameView& after) {
  if (!same_size(before, after) || Unit(before) != Unit(after)) return std::nullopt;
  std::size_t changed = 0;
  for (std::size_t i = 0; i < before.pixels.size(); ++i) changed += before.pixels[i] != after.pixels[i];
  return static_cast<double>(changed) / static_cast<double>(before.pixels.size());
}

StageMeasures measure(const StageView& stage, const FrameView* before) {
  StageMeasures measures{stage.number, stage.milliseconds};
  measures.coverage =
      static_cast<double>(count_valid(stage.frame)) / static_cast<double>(stage.frame.pixels.size());
  if (before != nullptr) measures.changed = changed_share(*before, stage.frame);
  measures.accuracy = stage.accuracy;
  return measures;
}

}  // namespace kit
