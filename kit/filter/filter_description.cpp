#include "kit/filter/filter_description.h"

#include <nlohmann/json.hpp>

#include "kit/common/text.h"
#include "kit/texts/filter_texts.h"

namespace kit {

namespace {

using Json = nlohmann::ordered_json;

Json json_number(const std::string& type, const std::string& text) {
  if (const auto integer = type != "float" ? parse_integer(text) : std::nullopt) return *integer;
  if (const auto number = parse_number(text)) return *number;
  return text;
}

/// Adds what is known of the parameter beside its schema.
void add_text(Json& json, const ParameterText& text) {
  if (!text.unit.empty()) json["unit"] = text.unit;
  json["meaning"] = text.meaning;
  if (!text.direction.empty()) json["direction"] = text.direction;
  for (const ChoiceText& choice : text.choices) {
    json["choices"].push_back(
        {{"value", choice.value}, {"name", choice.name}, {"meaning", choice.meaning}});
  }
}

Json json_parameters(const FilterDescription& filter) {
  Json parameters = Json::array();
  for (const SchemaParameter& p : filter.parameters) {
    parameters.push_back({{"name", p.name},
                          {"type", p.type},
                          {"min", json_number(p.type, p.min)},
                          {"max", json_number(p.type, p.max)},
                          {"step", json_number(p.type, p.step)},
                          {"default", json_number(p.type, p.default_value)},
                          {"description", p.description}});
    if (const auto* text = text_of(filter.name, p.name)) add_text(parameters.back(), *text);
  }
  return parameters;
}

}  // namespace

std::string to_json(const std::vector<FilterDescription>& filters) {
  Json array = Json::array();
  for (const FilterDescription& filter : filters) {
    Json json = {{"index", array.size()}, {"name", filter.name}, {"available", filter.available}};
    if (const FilterText* text = text_of(filter.name)) {
      json["summary"] = text->summary;
      json["use"] = text->use;
      json["avoid"] = text->avoid;
      json["asMade"] = text->as_made;
    }
    json["parameters"] = json_parameters(filter);
    array.push_back(std::move(json));
  }
  return array.dump(2);
}

}  // namespace kit
