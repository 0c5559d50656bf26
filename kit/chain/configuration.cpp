#include "kit/chain/configuration.h"

#include <algorithm>

#include "kit/common/error.h"
#include "kit/common/suggestions.h"
#include "kit/filter/filter_behaviour.h"

namespace kit {

namespace {

/// What a value of the type looks like; null when `value` does.
const char* expected_syntax(std::string_view type, std::string_view value) {
  if (type == "float") return parse_number(value) ? nullptr : "a number";
  if (type == "bool") return value == "0" || value == "1" ? nullptr : "0 or 1";
  return parse_integer(value) ? nullptr : "a whole number of at most 32 bits";
}

/// As the filters compare: float parameters in 32 bits.
bool inside(const std::string& type, double value, const ValueRange& range) {
  if (type != "float") return value >= range.min && value <= range.max;
  const auto narrow = static_cast<float>(value);
  return narrow >= static_cast<float>(range.min) && narrow <= static_cast<float>(range.max);
}

}  // namespace

std::vector<std::string> configuration_values(std::string_view filter, const Values& values,
                                              const std::vector<SchemaParameter>& schema) {
  if (ignores_configuration(filter) && !values.empty()) {
    refuse_key(values.begin()->first, filter, " has no parameters; ", values.begin()->first, " is given");
  }
  std::vector<std::string> names, texts;
  for (const SchemaParameter& parameter : schema) {
    names.push_back(parameter.name);
    texts.push_back(parameter.default_value);
  }
  for (const auto& [key, value] : values) {
    const auto found = std::find(names.begin(), names.end(), key);
    if (found == names.end()) refuse_key(key, "unknown key ", key, "; ", suggest(key, names));
    const auto index = static_cast<std::size_t>(found - names.begin());
    const SchemaParameter& parameter = schema[index];
    if (const char* expected = expected_syntax(parameter.type, value)) {
      refuse_key(key, key, '=', value, " is not ", expected);
    }
    const ValueRange range = value_range(filter, parameter);
    if (!inside(parameter.type, parse_number(value).value_or(0), range)) {
      refuse_key(key, key, '=', value, " is out of range; expected ", range.min, " to ", range.max);
    }
    texts[index] = value;
  }
  return texts;
}

}  // namespace kit
