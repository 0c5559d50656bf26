#include "kit/pipeline/sequence.h"

#include "kit/common/error.h"

namespace kit {

void run_sequence(const FrameSource& source, Pipeline& pipeline, Handover handover,
                  const SequenceVisitor& visitor) {
  for (std::size_t i = 0; i < source.names.size(); ++i) {
    const SourceFrame input = source.load(i);
    const auto on_stage = [&](const Stage& stage) {
      if (visitor.on_stage) visitor.on_stage(input, stage);
    };
    const auto result = [&] {
      try {
        return pipeline.run(input.frame, on_stage, handover);
      } catch (const Error& problem) {
        throw Error(problem.kind(), concat(source.names[i].label, ": ", problem.what()));
      }
    }();
    if (visitor.on_result) visitor.on_result(i, input, result);
  }
}

ChainResults::ChainResults(const Chain& chain) : filters(chain.size()) {
  for (std::size_t i = 0; i < chain.size(); ++i) filters[i].name = chain[i].filter;
}

void ChainResults::add(const Stage& stage, const std::optional<Image>& truth) {
  if (stage.number > 0) filters[stage.number - 1].add(stage.before, stage.frame, stage.milliseconds);
  if (!truth) return;
  accuracy.resize(filters.size() + 1);
  accuracy[stage.number].add(stage.frame, *truth);
}

}  // namespace kit
