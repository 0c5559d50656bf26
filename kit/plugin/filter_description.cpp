#include "kit/plugin/filter_description.h"

#include <nlohmann/json.hpp>

#include "kit/common/text.h"

namespace kit {

namespace {

using Json = nlohmann::ordered_json;

Json json_number(const std::string& type, const std::string& text) {
  if (const auto integer = type != "float" ? parse_integer(text) : std::nullopt) return *integer;
  if (const auto number = parse_number(text)) return *number;
  return text;
}

Json json_parameters(const std::vector<SchemaParameter>& schema) {
  Json parameters = Json::array();
  for (const SchemaParameter& p : schema) {
    parameters.push_back({{"name", p.name},
                          {"type", p.type},
                          {"min", json_number(p.type, p.min)},
                          {"max", json_number(p.type, p.max)},
                          {"step", json_number(p.type, p.step)},
                          {"default", json_number(p.type, p.default_value)},
                          {"description", p.description}});
  }
  return parameters;
}

}  // namespace

std::string to_json(const std::vector<FilterDescription>& filters) {
  Json array = Json::array();
  for (const FilterDescription& filter : filters) {
    array.push_back({{"index", array.size()},
                     {"name", filter.name},
                     {"available", filter.available},
                     {"parameters", json_parameters(filter.parameters)}});
  }
  return array.dump(2);
}

}  // namespace kit
