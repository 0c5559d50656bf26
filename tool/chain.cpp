#include "chain.h"

#include <algorithm>

#include "failure.h"
#include "suggestions.h"
#include "text.h"

namespace zvfilter {

using filterprocessor::SchemaParameter;

namespace {

/// What a value of the type looks like; null when `value` does.
const char* expected_syntax(std::string_view type, std::string_view value) {
  if (type == "float") return parse_number(value) ? nullptr : "a number";
  if (type == "bool") return value == "0" || value == "1" ? nullptr : "0 or 1";
  return parse_integer(value) ? nullptr : "a whole number of at most 32 bits";
}

}  // namespace

FilterRequest parse_filter_request(std::string_view text) {
  const auto colon = text.find(':');
  FilterRequest request{std::string(text.substr(0, colon)), std::nullopt};
  if (request.name.empty()) {
    fail_usage(concat("no filter name in \"", text, "\"; expected NAME or NAME:key=value,..."));
  }
  if (colon == std::string_view::npos) return request;
  auto& values = request.values.emplace();
  const std::string_view list = text.substr(colon + 1);
  if (list.empty()) return request;
  for (const std::string_view pair : split(list, ',')) {
    const auto equals = pair.find('=');
    if (equals == std::string_view::npos || equals == 0 || equals + 1 == pair.size()) {
      fail_usage(concat(request.name, ": \"", pair, "\" is not of the form key=value"));
    }
    const std::string key(pair.substr(0, equals));
    const auto same_key = [&](const auto& value) { return value.first == key; };
    if (std::any_of(values.begin(), values.end(), same_key)) {
      fail_usage(concat(request.name, ": ", key, " is given twice"));
    }
    values.emplace_back(key, pair.substr(equals + 1));
  }
  return request;
}

std::vector<std::string> configuration_values(const FilterRequest& request,
                                              const std::vector<SchemaParameter>& schema) {
  std::vector<std::string> names, values;
  for (const SchemaParameter& parameter : schema) {
    names.push_back(parameter.name);
    values.push_back(parameter.default_value);
  }
  for (const auto& [key, value] : *request.values) {
    const auto found = std::find(names.begin(), names.end(), key);
    if (found == names.end()) {
      fail_usage(concat(request.name, ": unknown key ", key, "; ", suggest(key, names)));
    }
    const auto index = static_cast<std::size_t>(found - names.begin());
    if (const char* expected = expected_syntax(schema[index].type, value)) {
      fail_usage(concat(request.name, ": ", key, "=", value, " is not ", expected));
    }
    values[index] = value;
  }
  return values;
}

}  // namespace zvfilter
