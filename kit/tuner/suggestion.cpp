#include "kit/tuner/suggestion.h"

#include "kit/advise/footage.h"
#include "kit/common/error.h"
#include "kit/pipeline/workers.h"
#include "kit/tuner/answers.h"

namespace kit::tuner {

namespace {

constexpr double kLeastSeconds = 1, kMostSeconds = 60;

}  // namespace

SuggestionRequest parse_suggestion_request(std::string_view text) {
  const std::string label = "the request";
  const Json json = parse_json_object(text, label);
  const JsonObject object(json, label + ": ");
  object.expect_no_other({"chain", "step", "seconds"});
  SuggestionRequest request;
  request.chain = read_steps(object);
  if (!object.find("step", "a number or null").is_null()) {
    request.step = object.number<std::size_t>("step");
    if (*request.step >= request.chain.size())
      object.fail_field("step", concat("is ", *request.step, "; the chain has ", request.chain.size(),
                                       " steps, numbered from 0"));
  }
  request.seconds = object.number<double>("seconds");
  if (!(request.seconds >= kLeastSeconds && request.seconds <= kMostSeconds))
    object.fail_field("seconds", concat("is ", request.seconds, "; expected 1 to 60"));
  return request;
}

std::string suggest(const FilterLibrary& library, FrameCache& frames, const SuggestionRequest& request,
                    bool use_truth, const std::atomic<bool>& stop) {
  const Workers workers(0);
  AdviceRequest advice_request;
  advice_request.for_each = [&](std::size_t count, const std::function<void(std::size_t)>& work) {
    workers.for_each(count, work);
  };
  const auto load = [&](std::size_t index) -> FrameAndTruth {
    const auto source = frames.frame(index);
    return {source->frame, use_truth ? source->truth : std::nullopt};
  };
  advice_request.footage = load_footage(frames.size(), load, advice_request.for_each);
  advice_request.chain = request.chain;
  advice_request.step = request.step;
  advice_request.seconds = request.seconds;
  advice_request.stop = [&stop] { return stop.load(); };
  const Advice advice = advise(library, advice_request);

  Json sentences = Json::array();
  for (const auto* part : {&advice.reasons, &advice.remarks}) {
    for (const std::string& sentence : *part) sentences.push_back(sentence);
  }
  return Json{{"chain", steps_json(advice.chain)},
              {"helps", advice.helps},
              {"left", advice.rows.back().loss},
              {"sentences", std::move(sentences)}}
      .dump();
}

}  // namespace kit::tuner
