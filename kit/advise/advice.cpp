#include "kit/advise/advice.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <iomanip>

#include "kit/common/error.h"
#include "kit/filter/filter_behaviour.h"

namespace kit {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kClip = 16;  // frames
constexpr std::size_t kLongFootage = 5 * kClip;
constexpr std::size_t kFewestEvaluations = 48, kMostEvaluations = 4000;
constexpr double kWorthAStep = 0.003;  // of the loss

std::string per_cent(double share) { return concat(std::fixed, std::setprecision(1), 100 * share, " %"); }

/// The measure that is weighed most in what one chain loses against another, and by how much it is worse.
std::string worst_of(const Measures& without, const Measures& with, const Measures& untouched,
                     const Weights& weights, bool with_truth) {
  double most = 0;
  std::string text;
  for (const MeasureText& each : measure_texts()) {
    const auto &a = without[each.measure], &b = with[each.measure];
    if (!a || !b || !untouched[each.measure]) continue;
    const double base = std::max(*untouched[each.measure], each.floor);
    const double worse = weights[static_cast<std::size_t>(each.measure)] * (*a - *b) / base;
    if (worse <= most) continue;
    most = worse;
    text = concat(each.name, " would be ", value_text(each.measure, a, with_truth), " instead of ",
                  value_text(each.measure, b, with_truth));
  }
  return text;
}

class Adviser {
 public:
  explicit Adviser(const FilterLibrary& library, const AdviceRequest& request)
      : request_(request),
        start_(Clock::now()),
        with_truth_(!request.footage.truth.empty()),
        weights_(request.weights.value_or(default_weights(with_truth_))),
        split_(split_frames(request.footage.frames.size())),
        library_(library),
        trials_(library, request.footage, with_truth_, request.seed) {}

  Advice work() {
    Advice advice;
    advice.with_truth = with_truth_;
    advice.weights = weights_;
    make_spaces();
    Search search(trials_, spaces_, split_.search, weights_, settings());
    Search::Candidate best = search.run();
    advice.evaluations = search.evaluations();
    advice.helps = best.loss < 1;
    if (advice.helps) explain(search, best, advice);
    advice.chain = best.chain;
    if (!advice.helps) advice.chain = without_help(best.chain);
    fill_table(advice);
    remark(advice);
    return advice;
  }

 private:
  bool single() const { return request_.footage.frames.size() == 1; }

  /// What is left where filters make it worse: a step whose values were asked for stays.
  Chain without_help(const Chain& best) const {
    if (request_.chain.empty()) return conversion(trials_.input());
    Chain chain = best;
    for (const std::size_t step : spaces_.front().optional_steps()) chain[step].enabled = false;
    return chain;
  }

  void make_spaces() {
    const Input& input = trials_.input();
    if (!request_.chain.empty()) {
      std::vector<std::size_t> optional;
      for (std::size_t i = 0; i < request_.chain.size(); ++i) {
        const Step& step = request_.chain[i];
        const bool needed =
            step.filter == "DisparityTransform" || step.filter == "OpenNIDisparityTransform";
        if (!request_.step && !needed && !changes_size(step.filter) && step.enabled)
          optional.push_back(i);
      }
      spaces_.emplace_back(library_, request_.chain, input, optional, request_.step);
      if (spaces_[0].genes().empty())
        refuse("the ", request_.step ? "step" : "chain", " has no value that could be advised");
      return;
    }
    for (Chain& order : sensible_orders(input, single())) {
      std::vector<std::size_t> optional;
      for (std::size_t i = conversion(input).size(); i < order.size(); ++i) optional.push_back(i);
      spaces_.emplace_back(library_, std::move(order), input, optional);
    }
  }

  SearchSettings settings() {
    SearchSettings settings{kMostEvaluations,  request_.seed, !request_.chain.empty(),
                            request_.for_each, request_.stop, request_.progress};
    if (!settings.for_each) {
      settings.for_each = [](std::size_t count, const std::function<void(std::size_t)>& work) {
        for (std::size_t i = 0; i < count; ++i) work(i);
      };
    }
    if (request_.evaluations) {
      settings.evaluations = *request_.evaluations;
      return settings;
    }
    // What a batch takes says how many evaluations the time is enough for; the first is slower than the others.
    constexpr std::size_t kBatch = 8;
    const auto time = [&] {
      const auto from = Clock::now();
      settings.for_each(kBatch,
                        [&](std::size_t) { trials_.run(spaces_.front().start(), split_.search); });
      return std::chrono::duration<double>(Clock::now() - from).count();
    };
    time();
    const double left = request_.seconds - std::chrono::duration<double>(Clock::now() - start_).count();
    const double affordable = std::max(left, 0.0) / std::max(time(), 1e-6) * kBatch * 1.3;
    settings.evaluations = static_cast<std::size_t>(
        std::clamp(affordable, double{kFewestEvaluations}, double{kMostEvaluations}));
    settings.stop = [this] {
      return (request_.stop && request_.stop()) ||
             std::chrono::duration<double>(Clock::now() - start_).count() > request_.seconds;
    };
    return settings;
  }

  /// Takes out steps that are not worth it and says of the others why they are in.
  void explain(Search& search, Search::Candidate& best, Advice& advice) {
    const Space& space = spaces_[best.space];
    for (bool again = true; again;) {
      again = false;
      for (const std::size_t step : space.optional_steps()) {
        if (!best.chain[step].enabled) continue;
        Chain without = best.chain;
        without[step].enabled = false;
        const double loss = search.loss(without);
        if (loss > best.loss + kWorthAStep) continue;
        best = {std::move(without), best.space, loss};
        again = true;
      }
    }
    const Measures with = trials_.run(best.chain, split_.search);
    for (std::size_t step = 0; step < best.chain.size(); ++step) {
      const std::string name = step_name(best.chain, step);
      const auto& optional = space.optional_steps();
      const bool may_go = std::find(optional.begin(), optional.end(), step) != optional.end();
      if (!best.chain[step].enabled) {
        advice.reasons.push_back(
            concat(best.chain[step].filter, " is off: nothing measured gets worse without it."));
        continue;
      }
      if (!may_go) continue;
      Chain without = best.chain;
      without[step].enabled = false;
      const Measures measured = trials_.run(without, split_.search);
      const double loss = search.loss(without);
      const std::string worst = worst_of(measured, with, search.untouched(), weights_, with_truth_);
      const double share = best.loss < 1 ? (loss - best.loss) / (1 - best.loss) : 0;
      advice.reasons.push_back(concat(best.chain[step].filter, " gives ", per_cent(share),
                                      " of the gain: without it ",
                                      worst.empty() ? "a limit is passed" : worst, '.'));
    }
    if (request_.chain.empty()) std::erase_if(best.chain, [](const Step& step) { return !step.enabled; });
    if (request_.chain.empty())
      std::erase_if(advice.reasons,
                    [](const std::string& text) { return text.find(" is off: ") != std::string::npos; });
  }

  void fill_table(Advice& advice) {
    advice.held_out = !split_.held_out.empty();
    const std::vector<Clip>& clips = advice.held_out ? split_.held_out : split_.search;
    const Chain defaults = request_.chain.empty() ? sensible_orders(trials_.input(), single()).front()
                                                  : with_defaults(request_.chain);
    const auto add = [&](const char* name, const Chain& chain) {
      AdviceRow row{name, chain, trials_.run(chain, clips), 1};
      row.loss = mean_of(row.measures, advice.rows.empty() ? row.measures : advice.rows.front().measures,
                         weights_);
      advice.rows.push_back(std::move(row));
    };
    add("untouched", conversion(trials_.input()));
    add("defaults", defaults);
    add("advised", advice.chain);
    if (!advice.helps || advice.rows.back().loss < advice.rows.front().loss) return;
    // Frames that the search has not seen have the last word.
    advice.remarks.push_back(
        "What suited the frames that were searched on made those held out no better.");
    advice.chain = without_help(advice.chain);
    advice.helps = false;
    advice.reasons.clear();
    advice.rows.pop_back();
    add("advised", advice.chain);
  }

  void remark(Advice& advice) const {
    const std::size_t frames = request_.footage.frames.size();
    if (frames == 1)
      advice.remarks.push_back(
          "One frame says nothing of what changes with time: no filter with a memory was tried, and "
          "nothing was held out.");
    else if (!advice.held_out)
      advice.remarks.push_back(
          concat(frames, " frames are too few to hold any out: the table is of those searched on."));
    if (!with_truth_ && advice.rows.front().measures[Measure::flicker] == std::nullopt && frames > 1)
      advice.remarks.push_back(
          "Nothing is at rest in these frames: flicker, lost and moved pixels are not known.");
    for (const std::string_view name :
         beyond_limits(advice.rows.back().measures, advice.rows.front().measures))
      advice.remarks.push_back(
          concat("The advised chain passes the limit of ", name, " on the frames held out."));
    if (!advice.helps) advice.remarks.push_back("No filter helps by these measures.");
  }

  const AdviceRequest& request_;
  Clock::time_point start_;
  bool with_truth_;
  Weights weights_;
  Split split_;
  FilterLibrary library_;
  Trials trials_;
  std::vector<Space> spaces_;
};

}  // namespace

Split split_frames(std::size_t frames) {
  constexpr std::size_t kLeastToHoldOut = 6;
  if (frames < kLeastToHoldOut) return {{{0, frames, 0}}, {}};
  if (frames < kLongFootage) {
    const std::size_t searched = std::min(frames - std::max<std::size_t>(frames / 3, 2), 2 * kClip);
    const std::size_t before = std::min(searched, kClip);  // so that filters with a memory have one
    const std::size_t held = std::min(frames - searched, kClip);
    return {{{0, searched, 0}}, {{searched - before, before + held, before}}};
  }
  // Three clips, and between them two that are held out.
  Split split;
  for (std::size_t part = 0; part < 5; ++part) {
    const std::size_t first = part * (frames - kClip) / 4;
    (part % 2 == 0 ? split.search : split.held_out).push_back({first, kClip, 0});
  }
  return split;
}

Advice advise(const FilterLibrary& library, const AdviceRequest& request) {
  if (request.footage.frames.empty()) refuse("there are no frames to advise on");
  if (request.step && *request.step >= request.chain.size())
    refuse("there is no step ", *request.step + 1, "; the chain has ", request.chain.size());
  return Adviser(library, request).work();
}

}  // namespace kit
