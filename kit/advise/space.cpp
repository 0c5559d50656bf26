#include "kit/advise/space.h"

#include <algorithm>
#include <cmath>
#include <iomanip>

#include "kit/common/error.h"
#include "kit/filter/filter_behaviour.h"
#include "kit/filter/filter_effects.h"
#include "kit/texts/filter_texts.h"

namespace kit {

namespace {

/// What is chosen, and the part of its range that makes sense. What decides sizes, units and limits of depth is the user's.
struct Chosen {
  std::string_view filter, key;
  double least, most;
};
constexpr Chosen kChosen[] = {
    {"HoleFillingFilter", "hole_filling_mode", 0, 2}, {"NoiseRemovalFilter", "max_size", 4, 1000},
    {"NoiseRemovalFilter", "min_diff", 8, 2048},      {"SpatialAdvancedFilter", "magnitude", 1, 5},
    {"SpatialAdvancedFilter", "alpha", 0.1, 0.95},    {"SpatialAdvancedFilter", "disp_diff", 8, 2048},
    {"SpatialAdvancedFilter", "radius", 0, 8},        {"TemporalFilter", "diff_scale", 0.1, 1},
    {"TemporalFilter", "weight", 0.1, 0.95},          {"EdgeNoiseRemovalFilter", "margin_x_th", 1, 24},
};

int decimals_of(const std::string& text) {
  const auto point = text.find('.');
  return point == std::string::npos ? 0 : static_cast<int>(text.find_last_not_of('0') - point);
}

bool has_effect(const Step& step, const std::string& key, const Input& input) {
#if defined(__aarch64__)
  if (step.filter == "SpatialAdvancedFilter" && key == "alpha") return false;  // always 0.5 there
#endif
  // On disparity frames `magnitude` says nothing, whatever it is above 1.
  Values values = step.values.value_or(Values());
  values[key] = std::string("2");
  for (const std::string& note : missing_effects(step.filter, values, input.traits.pixel_type, false)) {
    if (note.starts_with(key + " has no effect")) return false;
  }
  return true;
}

}  // namespace

double Gene::place_of(double value) const {
  const double inside = std::clamp(value, min, max);
  return even_ratios ? std::log(inside / min) / std::log(max / min) : (inside - min) / (max - min);
}

std::string Gene::text_at(double place) const {
  const double at = std::clamp(place, 0.0, 1.0);
  const double value = even_ratios ? min * std::pow(max / min, at) : min + at * (max - min);
  const double rounded = std::clamp(std::round(value / unit) * unit, min, max);
  std::string text = concat(std::fixed, std::setprecision(decimals), rounded);
  if (text.find('.') != std::string::npos) {
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
  }
  return text;
}

std::size_t Gene::values() const { return static_cast<std::size_t>(std::round((max - min) / unit)) + 1; }

Space::Space(const FilterLibrary& library, Chain steps, const Input& input,
             std::vector<std::size_t> optional, std::optional<std::size_t> only)
    : start_(std::move(steps)), optional_(std::move(optional)) {
  Pipeline pipeline(library, start_);
  pipeline.set_input(input);
  Input seen = input;  // by the step
  for (std::size_t i = 0; i < start_.size(); ++i) {
    Step& step = start_[i];
    if (step.enabled && step.filter == "DisparityTransform") seen.traits.pixel_type = ZV_PIXEL_TYPE_DEPTH;
    if (only && *only != i) continue;
    for (const SchemaParameter& parameter : pipeline.parameters(i)) {
      const auto* const chosen = std::find_if(
          std::begin(kChosen), std::end(kChosen),
          [&](const Chosen& each) { return each.filter == step.filter && each.key == parameter.name; });
      if (chosen == std::end(kChosen) || !has_effect(step, parameter.name, seen)) continue;
      const ValueRange range = value_range(step.filter, parameter);
      const ParameterText* const text = text_of(step.filter, parameter.name);
      const double min = std::max(range.min, chosen->least), max = std::min(range.max, chosen->most);
      const bool choice = text != nullptr && !text->choices.empty();
      genes_.push_back({i, parameter.name, min, max, parse_number(parameter.step).value_or(1),
                        decimals_of(parameter.step), !choice && min > 0 && max / min >= 20, choice});
      if (!step.values) step.values.emplace();
      if (!step.values->contains(parameter.name))
        (*step.values)[parameter.name] = parameter.default_value;
    }
  }
}

double Space::place(const Chain& chain, const Gene& gene) const {
  return gene.place_of(parse_number(chain[gene.step].values->at(gene.key)).value_or(gene.min));
}

Chain Space::with(Chain chain, const Gene& gene, double place) const {
  (*chain[gene.step].values)[gene.key] = gene.text_at(place);
  return chain;
}

Chain Space::random(Chance& chance) const {
  Chain chain = start_;
  for (const Gene& gene : genes_) chain = with(std::move(chain), gene, chance.share());
  for (const std::size_t step : optional_) chain[step].enabled = chance.below(4) > 0;
  return chain;
}

Chain conversion(const Input& input) {
  if (input.traits.pixel_type != ZV_PIXEL_TYPE_DISPARITY) return {};
  return {{.filter = "DisparityTransform", .values = Values()}};
}

std::vector<Chain> sensible_orders(const Input& input, bool single_frame) {
  const Step noise{.filter = "NoiseRemovalFilter"}, spatial{.filter = "SpatialAdvancedFilter"},
      temporal{.filter = "TemporalFilter"}, fill{.filter = "HoleFillingFilter"},
      margin{.filter = "EdgeNoiseRemovalFilter"};
  std::vector<Chain> orders = {{noise, spatial, temporal},
                               {noise, temporal, spatial},
                               {temporal, noise, spatial},
                               {noise, spatial, temporal, fill},
                               {margin, noise, spatial, temporal}};
  if (single_frame) orders = {{noise, spatial}, {noise, spatial, fill}, {margin, noise, spatial}};
  for (Chain& order : orders) {
    const Chain first = conversion(input);
    order.insert(order.begin(), first.begin(), first.end());
  }
  return orders;
}

Chain with_defaults(const Chain& chain) {
  Chain plain = chain;
  for (Step& step : plain) {
    for (const Chosen& each : kChosen) {
      if (each.filter == step.filter && step.values) step.values->erase(std::string(each.key));
    }
  }
  return plain;
}

}  // namespace kit
