#include "kit/advise/measures.h"

#include <algorithm>
#include <iomanip>

#include "kit/common/error.h"
#include "kit/common/suggestions.h"

namespace kit {

namespace {

using enum Measure;
using Unit = MeasureText::Unit;
constexpr double kPenalty = 10;

constexpr MeasureText kTexts[] = {
    {missing, "missing", "share of the pixels without depth", "share of the pixels without depth", 0.1,
     0.1, 0.05, 0.02, Unit::share},
    {median,
     "median",
     "median error",
     "median error of predicting the next raw frame's surfaces",
     0.3,
     0.3,
     {},
     1e-6,
     Unit::error},
    {percentile95,
     "p95",
     "95th percentile of the error",
     "95th percentile of the error of predicting the next raw frame's surfaces",
     0.2,
     0.2,
     {},
     1e-6,
     Unit::error},
    {off,
     "off",
     "share of the pixels off by more than 5 %",
     "share of the predictions off by more than 5 %",
     0.2,
     0.2,
     {},
     0.002,
     Unit::share},
    {flicker,
     "flicker",
     "median change where the truth stays the same",
     "median change where raw pixels are at rest",
     0.2,
     0.2,
     {},
     1e-6,
     Unit::error},
    {roughness, "roughness", "", "median unevenness of surfaces", 0.15, 0, {}, 1e-6, Unit::error},
    {speckles, "speckles", "", "share of planted speckles left", 0.05, 0, {}, 0.1, Unit::share},
    {lost, "lost", "", "share of pixels at rest that were emptied", 0, 0, 0.05, 1, Unit::share},
    {moved, "moved", "", "share of pixels beside edges at rest that went over to the other side", 0, 0,
     0.01, 1, Unit::share},
};

}  // namespace

std::span<const MeasureText> measure_texts() { return kTexts; }
const MeasureText& text_of(Measure measure) { return kTexts[static_cast<std::size_t>(measure)]; }

Weights default_weights(bool with_truth) {
  Weights weights = {};
  for (std::size_t i = 0; i < kMeasures; ++i)
    weights[i] = with_truth ? kTexts[i].weight_with_truth : kTexts[i].weight;
  return weights;
}

void set_weight(Weights& weights, const std::string& text) {
  const auto equals = text.find('=');
  const std::string name = text.substr(0, equals);
  std::vector<std::string> names;
  for (const MeasureText& each : kTexts) names.emplace_back(each.name);
  const auto found = std::find(names.begin(), names.end(), name);
  if (equals == std::string::npos || found == names.end())
    refuse("weight ", text, ": expected NAME=VALUE; ", suggest(name, names));
  const auto value = parse_number(text.substr(equals + 1));
  if (!value || *value < 0 || *value > 1000)
    refuse("weight ", text, ": expected a number from 0 to 1000");
  weights[static_cast<std::size_t>(found - names.begin())] = *value;
}

double mean_of(const Measures& measures, const Measures& untouched, const Weights& weights) {
  double sum = 0, weight = 0;
  for (std::size_t i = 0; i < kMeasures; ++i) {
    if (!untouched.values[i]) continue;
    // A chain that left nothing to measure is no better than nothing.
    const double value = measures.values[i].value_or(2 * *untouched.values[i] + kTexts[i].floor);
    sum += weights[i] * value / std::max(*untouched.values[i], kTexts[i].floor);
    weight += weights[i] * std::min(1.0, *untouched.values[i] / kTexts[i].floor);
  }
  return weight > 0 ? sum / weight : 1;
}

double loss_of(const Measures& measures, const Measures& untouched, const Weights& weights) {
  double loss = mean_of(measures, untouched, weights);
  for (const MeasureText& each : kTexts) {
    const auto &value = measures[each.measure], &before = untouched[each.measure];
    if (each.limit && value && before) loss += kPenalty * std::max(0.0, *value - *before - *each.limit);
  }
  return loss;
}

std::vector<std::string_view> beyond_limits(const Measures& measures, const Measures& untouched) {
  std::vector<std::string_view> names;
  for (const MeasureText& each : kTexts) {
    const auto &value = measures[each.measure], &before = untouched[each.measure];
    if (each.limit && value && before && *value > *before + *each.limit) names.push_back(each.name);
  }
  return names;
}

std::string value_text(Measure measure, const std::optional<double>& value, bool with_truth) {
  if (!value) return "-";
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text << std::fixed;
  switch (text_of(measure).unit) {
    case Unit::share:
      text << std::setprecision(2) << 100 * *value << " %";
      break;
    default:
      text << std::setprecision(with_truth ? 1 : 5) << *value << (with_truth ? " mm" : " /m");
  }
  return text.str();
}

}  // namespace kit
