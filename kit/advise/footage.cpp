#include "kit/advise/footage.h"

#include <set>

namespace kit {

Footage load_footage(std::size_t count, const std::function<FrameAndTruth(std::size_t)>& load,
                     const ForEach& for_each) {
  const Split split = split_frames(count);
  std::set<std::size_t> needed;
  for (const auto* part : {&split.search, &split.held_out}) {
    for (const Clip& clip : *part) {
      for (std::size_t i = 0; i < clip.count; ++i) needed.insert(clip.first + i);
    }
  }
  const std::vector<std::size_t> numbers(needed.begin(), needed.end());
  std::vector<FrameAndTruth> loaded(count);
  for_each(numbers.size(), [&](std::size_t i) { loaded[numbers[i]] = load(numbers[i]); });
  Footage footage;
  const bool has_truth = loaded.front().second.has_value();
  for (auto& [frame, truth] : loaded) {
    footage.frames.push_back(std::move(frame));
    if (has_truth) footage.truth.push_back(truth ? std::move(*truth) : Image());
  }
  return footage;
}

}  // namespace kit
