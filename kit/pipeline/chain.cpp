#include "kit/pipeline/chain.h"

#include <algorithm>

#include "kit/common/error.h"
#include "kit/common/suggestions.h"

namespace kit {

namespace {

/// What a value of the type looks like; null when `value` does.
const char* expected_syntax(std::string_view type, std::string_view value) {
  if (type == "float") return parse_number(value) ? nullptr : "a number";
  if (type == "bool") return value == "0" || value == "1" ? nullptr : "0 or 1";
  return parse_integer(value) ? nullptr : "a whole number of at most 32 bits";
}

}  // namespace

Step parse_step(std::string_view text) {
  const auto colon = text.find(':');
  Step step{std::string(text.substr(0, colon)), std::nullopt};
  if (step.filter.empty()) {
    refuse("no filter name in \"", text, "\"; expected NAME or NAME:key=value,...");
  }
  if (colon == std::string_view::npos) return step;
  step.values.emplace();
  const std::string_view list = text.substr(colon + 1);
  if (list.empty()) return step;
  for (const std::string_view pair : split(list, ',')) {
    const auto equals = pair.find('=');
    if (equals == std::string_view::npos || equals == 0 || equals + 1 == pair.size()) {
      refuse(step.filter, ": \"", pair, "\" is not of the form key=value");
    }
    const std::string key(pair.substr(0, equals));
    const bool fresh = step.values->emplace(key, pair.substr(equals + 1)).second;
    if (!fresh) refuse(step.filter, ": ", key, " is given twice");
  }
  return step;
}

std::vector<std::string> configuration_values(const std::string& filter, const Values& values,
                                              const std::vector<SchemaParameter>& schema) {
  std::vector<std::string> names, texts;
  for (const SchemaParameter& parameter : schema) {
    names.push_back(parameter.name);
    texts.push_back(parameter.default_value);
  }
  for (const auto& [key, value] : values) {
    const auto found = std::find(names.begin(), names.end(), key);
    if (found == names.end()) refuse(filter, ": unknown key ", key, "; ", suggest(key, names));
    const auto index = static_cast<std::size_t>(found - names.begin());
    if (const char* expected = expected_syntax(schema[index].type, value)) {
      refuse(filter, ": ", key, "=", value, " is not ", expected);
    }
    texts[index] = value;
  }
  return texts;
}

}  // namespace kit
