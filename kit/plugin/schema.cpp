#include "kit/plugin/schema.h"

#include <algorithm>
#include <array>

#include "kit/common/error.h"

namespace kit {

namespace {

constexpr std::array<std::string_view, 5> kTypes = {"integer", "float", "bool", "uint16_t", "uint32_t"};
constexpr std::string_view kBlanks = " \t\r";

std::string_view trim_start(std::string_view text) {
  const auto start = text.find_first_not_of(kBlanks);
  return start == std::string_view::npos ? std::string_view{} : text.substr(start);
}

std::string trim(std::string_view text) {
  text = trim_start(text);
  return std::string(text.substr(0, text.find_last_not_of(kBlanks) + 1));
}

[[noreturn]] void fail_line(std::string_view line, const char* why) {
  fail("schema line \"", line, "\": ", why);
}

SchemaParameter parse_line(std::string_view line) {
  SchemaParameter parameter;
  std::string_view rest = line;
  for (std::string* field : {&parameter.name, &parameter.type, &parameter.min, &parameter.max,
                             &parameter.step, &parameter.default_value}) {
    const auto comma = rest.find(',');
    if (comma == std::string_view::npos) fail_line(line, "expected seven fields separated by commas");
    *field = trim(rest.substr(0, comma));
    rest.remove_prefix(comma + 1);
  }
  if (rest.find(',') != std::string_view::npos) fail_line(line, "expected no comma in the description");
  parameter.description = trim_start(rest);
  if (parameter.name.empty()) fail_line(line, "expected a name");
  if (std::find(kTypes.begin(), kTypes.end(), parameter.type) == kTypes.end()) {
    fail_line(line, "expected one of the types integer, float, bool, uint16_t, uint32_t");
  }
  return parameter;
}

}  // namespace

std::vector<SchemaParameter> parse_schema(std::string_view text) {
  std::vector<SchemaParameter> parameters;
  while (!text.empty()) {
    const auto end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    if (!trim(line).empty()) parameters.push_back(parse_line(line));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return parameters;
}

}  // namespace kit
