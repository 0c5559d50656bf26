#include "kit/chain/chain_file.h"

#include <algorithm>

#include "kit/common/error.h"
#include "kit/common/files.h"
#include "kit/common/text.h"
#include "kit/filter/filter_behaviour.h"

namespace kit {

namespace {

constexpr int kVersion = 1;

/// Whole numbers as such, others as the shortest text that reads as the number.
std::optional<std::string> value_text(const Json& value) {
  if (value.is_boolean()) return value.get<bool>() ? "1" : "0";
  if (value.is_number_integer()) return value.dump();
  if (value.is_number()) return number_text(value.get<double>());
  return std::nullopt;
}

Json value_json(const std::string& text) {
  if (const auto integer = parse_integer(text)) return *integer;
  if (const auto number = parse_number(text)) return *number;
  return text;
}

Step read_step(const JsonObject& object) {
  object.expect_no_other({"filter", "tag", "enabled", "values", "comment"});
  Step step;
  step.filter = object.text("filter");
  if (step.filter.empty()) object.fail_field("filter", "is empty; expected a filter's name");
  if (object.has("tag")) step.tag = object.text("tag");
  if (object.has("enabled")) step.enabled = object.flag("enabled");
  if (object.has("comment")) static_cast<void>(object.text("comment"));
  if (!object.has("values")) return step;
  step.values.emplace();
  const JsonObject values = object.object("values");
  for (const auto& [key, value] : values.json().items()) {
    const auto text = value_text(value);
    if (!text) values.fail_field(key, concat("is ", shown(value), "; expected a number, true or false"));
    step.values->emplace(key, *text);
  }
  return step;
}

/// A fault of a chain is a bad request wherever it is written.
template <typename Work>
auto about_chain(const std::string& label, int step, const Work& work) {
  try {
    return work();
  } catch (const Error& problem) {
    const std::string place = step >= 0 ? concat("step ", step + 1, ": ") : "";
    throw Error(Error::Kind::bad_request, concat(label, place, problem.what()),
                {step >= 0 ? step : problem.place().step, problem.place().tag, problem.place().key});
  }
}

ChainFile read_json(std::string_view text, const std::string& label) {
  ChainFile chain;
  about_chain("", -1, [&] {
    const Json json = parse_json_object(text, label);
    const JsonObject file(json, label + ": ");
    file.expect_no_other({"$schema", "version", "description", "input", "steps"});
    if (const int version = file.number<int>("version"); version != kVersion) {
      file.fail_field("version", concat("is ", version, "; this program reads version ", kVersion));
    }
    if (file.has("description")) chain.description = file.text("description");
    if (file.has("input")) chain.input = read_input(file.object("input"));
    const Json& steps = file.find("steps", "an array");
    if (!steps.is_array()) file.fail_field("steps", concat("is ", shown(steps), "; expected an array"));
    for (const Json& each : steps) {
      const auto number = static_cast<int>(chain.steps.size());
      about_chain(label + ": ", number, [&] {
        if (!each.is_object()) fail("is ", shown(each), "; expected an object");
        chain.steps.push_back(read_step({each, ""}));
      });
    }
  });
  return chain;
}

ChainFile read_texts(std::string_view text, const std::string& label) {
  constexpr std::string_view kBlanks = " \t\r";
  ChainFile chain;
  for (const std::string_view line : split(text, '\n')) {
    for (std::string_view part : split(line, ';')) {
      part.remove_prefix(std::min(part.find_first_not_of(kBlanks), part.size()));
      part = part.substr(0, part.find_last_not_of(kBlanks) + 1);
      if (part.empty()) continue;
      about_chain(label + ": ", static_cast<int>(chain.steps.size()),
                  [&] { chain.steps.push_back(parse_step(part)); });
    }
  }
  return chain;
}

Json number_schema(const FilterDescription& filter, const SchemaParameter& parameter) {
  const ValueRange range = value_range(filter.name, parameter);
  Json schema = {{"description", parameter.description}};
  if (parameter.type == "bool") {
    schema["anyOf"] = Json::array({{{"type", "boolean"}}, {{"enum", {0, 1}}}});
  } else {
    schema["type"] = parameter.type == "float" ? "number" : "integer";
    schema["minimum"] = value_json(number_text(range.min));
    schema["maximum"] = value_json(number_text(range.max));
  }
  schema["default"] = value_json(parameter.default_value);
  return schema;
}

Json step_schema(const FilterDescription& filter) {
  Json values = {{"type", "object"}, {"additionalProperties", false}, {"properties", Json::object()}};
  for (const SchemaParameter& parameter : filter.parameters) {
    values["properties"][parameter.name] = number_schema(filter, parameter);
  }
  return {{"properties",
           {{"filter", {{"const", filter.name}}},
            {"tag", {{"$ref", "#/$defs/tag"}}},
            {"enabled", {{"type", "boolean"}, {"default", true}}},
            {"comment", {{"type", "string"}}},
            {"values", values}}},
          {"required", {"filter"}},
          {"additionalProperties", false}};
}

}  // namespace

ChainFile parse_chain(std::string_view text, const std::string& label) {
  const auto start = text.find_first_not_of(" \t\r\n");
  ChainFile chain = start != std::string_view::npos && text[start] == '{' ? read_json(text, label)
                                                                          : read_texts(text, label);
  about_chain(label + ": ", -1, [&] { check_tags(chain.steps); });
  return chain;
}

ChainFile read_chain_file(const std::filesystem::path& file) {
  return parse_chain(read_text(file, kMostJsonBytes), file.string());
}

bool is_chain_file(const std::string& source) {
  // A filter's name has no dot and no slash.
  return source.find_first_of("./") < source.find_first_of(":;=\n{");
}

ChainFile read_chain(const std::string& source) {
  return is_chain_file(source) ? read_chain_file(source) : parse_chain(source, "the chain");
}

std::string chain_json(const ChainFile& chain) {
  Json json = {{"version", kVersion}};
  if (!chain.description.empty()) json["description"] = chain.description;
  if (chain.input) json["input"] = input_json(*chain.input, true);
  Json& steps = json["steps"] = Json::array();
  for (const Step& step : chain.steps) {
    Json object = {{"filter", step.filter}};
    if (!step.tag.empty()) object["tag"] = step.tag;
    if (!step.enabled) object["enabled"] = false;
    if (step.values) {
      Json& values = object["values"] = Json::object();
      for (const auto& [key, value] : *step.values) values[key] = value_json(value);
    }
    steps.push_back(std::move(object));
  }
  return json.dump(2) + '\n';
}

std::string chain_file_schema(const std::vector<FilterDescription>& filters) {
  Json names = Json::array(), steps = Json::array();
  for (const FilterDescription& filter : filters) {
    names.push_back(filter.name);
    steps.push_back(step_schema(filter));
  }
  const Json number = {{"type", "number"}}, integer = {{"type", "integer"}};
  const auto object = [](Json properties, Json required) {
    return Json{{"type", "object"},
                {"properties", std::move(properties)},
                {"required", std::move(required)},
                {"additionalProperties", false}};
  };
  const Json side = {{"type", "integer"}, {"minimum", 1}, {"maximum", 65535}};
  const Json input =
      object({{"width", side},
              {"height", side},
              {"pixelType",
               {{"anyOf", Json::array({{{"enum", {"depth", "disparity", "linear"}}}, integer})},
                {"default", "depth"}}},
              {"format", integer},
              {"bits", {{"type", "integer"}, {"minimum", 1}, {"maximum", 16}, {"default", 16}}},
              {"valueScale",
               {{"type", "number"},
                {"exclusiveMinimum", 0},
                {"default", 1},
                {"description", "millimetres a unit"}}},
              {"intrinsics", object({{"fx", number},
                                     {"fy", number},
                                     {"cx", number},
                                     {"cy", number},
                                     {"width", integer},
                                     {"height", integer}},
                                    {"fx", "fy", "cx", "cy"})},
              {"disparity", object({{"baseline", {{"type", "number"}, {"description", "millimetres"}}},
                                    {"fx", {{"type", "number"}, {"description", "pixels"}}},
                                    {"zpd", number},
                                    {"zpps", number},
                                    {"bitSize", integer},
                                    {"unit", number},
                                    {"minDisparity", number},
                                    {"packMode", integer},
                                    {"dispOffset", number},
                                    {"invalidDisp", integer},
                                    {"dispIntPlace", integer},
                                    {"isDualCamera", integer}},
                                   {"baseline", "fx"})},
              {"metadata", {{"type", "object"}, {"additionalProperties", integer}}}},
             Json::array());
  Json schema = {{"$schema", "https://json-schema.org/draft/2020-12/schema"},
                 {"title", "A chain of depth filters"},
                 {"type", "object"},
                 {"properties",
                  {{"$schema", {{"type", "string"}}},
                   {"version", {{"const", kVersion}}},
                   {"description", {{"type", "string"}}},
                   {"input", input},
                   {"steps",
                    {{"type", "array"},
                     {"items",
                      {{"type", "object"},
                       {"properties", {{"filter", {{"enum", names}}}}},
                       {"required", {"filter"}},
                       {"oneOf", steps}}}}}}},
                 {"required", {"version", "steps"}},
                 {"additionalProperties", false},
                 {"$defs", {{"tag", {{"type", "string"}, {"pattern", "^[A-Za-z_-][A-Za-z0-9_-]*$"}}}}}};
  return schema.dump(2) + '\n';
}

}  // namespace kit
