#include "kit/tuner/session.h"

#include <algorithm>
#include <utility>

#include "kit/chain/chain_file.h"
#include "kit/filter/filter_behaviour.h"
#include "kit/pipeline/sequence.h"

namespace kit::tuner {

namespace {

/// The parameter of a filter with history that says what part a new frame has in the result.
constexpr const char* kNewFrameWeight = "weight";

std::string text_of(const NamedChain& chain) {
  return chain_json({"", std::nullopt, chain.steps}) + join(chain.names, "\n");
}

/// Whether a filter at work can be made the other step without being made anew.
bool can_become(const Step& old, const Step& step) {
  return old.filter == step.filter && old.tag == step.tag && (step.values || !old.values);
}

std::size_t offset(const std::vector<std::string>& texts,
                   std::vector<std::string>::const_iterator place) {
  return static_cast<std::size_t>(place - texts.begin());
}

}  // namespace

void StepFigures::add(const FrameView& before, const FrameView& after, double milliseconds) {
  statistics.add(before, after, milliseconds);
  pixels_before = before.pixels.size();
  pixels_after = after.pixels.size();
}

const ShownFrame& Session::show(std::size_t index, const NamedChain& chain) {
  const std::string text = text_of(chain);
  const bool stays = shown_ && index == shown_->index;
  const bool changed = !pipeline_ || text != chain_;
  if (stays && !changed) return *shown_;
  // What a filter refuses is said before anything changes.
  if (changed) static_cast<void>(Pipeline(library_, chain.steps));
  ShownFrame next;
  const bool goes_on = pipeline_ && shown_ && index == shown_->index + 1;
  next.restarted = !goes_on;
  next.first = goes_on ? shown_->first : index;
  try {
    take(chain);
    if (!goes_on) pipeline_->reset();
    if (stays) next.first = index - std::min(index, run_up());
    run(goes_on ? index : next.first, index, next);
  } catch (...) {
    pipeline_.reset();
    throw;
  }
  chain_ = text;
  shown_ = std::move(next);
  return *shown_;
}

/// Turns the chain at work into this one; steps that stay keep what they remember.
void Session::take(const NamedChain& chain) {
  if (!pipeline_) {
    pipeline_.emplace(library_, chain.steps);
    names_ = chain.names;
    return;
  }
  for (std::size_t i = names_.size(); i-- > 0;) {
    const auto wanted = std::find(chain.names.begin(), chain.names.end(), names_[i]);
    if (wanted != chain.names.end() &&
        can_become(pipeline_->chain()[i], chain.steps[offset(chain.names, wanted)]))
      continue;
    pipeline_->remove(i);
    names_.erase(names_.begin() + static_cast<std::ptrdiff_t>(i));
  }
  for (std::size_t i = 0; i < chain.steps.size(); ++i) {
    const auto target = names_.begin() + static_cast<std::ptrdiff_t>(i);
    const auto found = std::find(target, names_.end(), chain.names[i]);
    const Step& step = chain.steps[i];
    if (found == names_.end()) {
      pipeline_->insert(i, step);
      names_.insert(target, chain.names[i]);
      continue;
    }
    pipeline_->move(offset(names_, found), i);
    std::rotate(target, found, found + 1);
    if (step.values && step.values != pipeline_->chain()[i].values) pipeline_->configure(i, *step.values);
    pipeline_->enable(i, step.enabled);
  }
}

std::size_t Session::run_up() const {
  constexpr double kShare = 0.05;
  std::size_t most = 0;
  for (std::size_t i = 0; i < pipeline_->chain().size(); ++i) {
    const Step& step = pipeline_->chain()[i];
    if (!step.enabled || !has_history(step.filter)) continue;
    const std::vector<SchemaParameter>& parameters = pipeline_->parameters(i);
    const bool weighs =
        std::any_of(parameters.begin(), parameters.end(),
                    [](const SchemaParameter& each) { return each.name == kNewFrameWeight; });
    if (!weighs) return kMostRunUp;
    double rest = 1;
    const double others = 1 - value_of(*pipeline_, i, kNewFrameWeight);
    std::size_t frames = 0;
    for (; rest >= kShare && frames < kMostRunUp; ++frames) rest *= others;
    most = std::max(most, frames);
  }
  return most;
}

void Session::run(std::size_t first, std::size_t last, ShownFrame& shown) {
  FrameSource part;
  for (std::size_t i = first; i <= last; ++i) part.names.push_back(frames_.name(i));
  // The filters need no truth.
  part.load = [&](std::size_t i) { return SourceFrame{frames_.frame(first + i)->frame, std::nullopt}; };
  shown.index = last;
  shown.input = frames_.frame(last);
  shown.steps.resize(pipeline_->chain().size());
  std::size_t begun = first;
  double milliseconds = 0;
  SequenceVisitor visitor;
  visitor.on_passage = [&](const SourceFrame&, const Passage& passage) {
    if (passage.number == 0) ++begun;
    if (passage.number == 0 || begun <= last) return;
    const std::size_t step = passage.number - 1;
    shown.steps[step].emplace().add(passage.before, passage.frame, passage.milliseconds);
    milliseconds += passage.milliseconds;
  };
  visitor.on_filtered = [&](std::size_t index, const SourceFrame& input, const FrameView& result) {
    if (first + index < last) return;
    shown.whole.add(input.frame, result, milliseconds);
    shown.result = frame_of(result);
  };
  run_sequence(part, *pipeline_, {}, visitor);
  shown.result.intrinsic = pipeline_->output().traits.intrinsic;
}

std::optional<std::pair<AccuracySummary, AccuracySummary>> Session::accuracy() const {
  if (!shown_ || !shown_->input->truth) return std::nullopt;
  Accuracy before, after;
  before.add(shown_->input->frame, *shown_->input->truth);
  after.add(shown_->result, *shown_->input->truth);
  return std::pair(before.summary(), after.summary());
}

}  // namespace kit::tuner
