#include "kit/schema/schema.h"

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
  const auto fields = split(line, ',');
  if (fields.size() < 7) fail_line(line, "expected seven fields separated by commas");
  if (fields.size() > 7) fail_line(line, "expected no comma in the description");
  SchemaParameter parameter{trim(fields[0]),
                            trim(fields[1]),
                            trim(fields[2]),
                            trim(fields[3]),
                            trim(fields[4]),
                            trim(fields[5]),
                            std::string(trim_start(fields[6]))};
  if (parameter.name.empty()) fail_line(line, "expected a name");
  if (std::find(kTypes.begin(), kTypes.end(), parameter.type) == kTypes.end()) {
    fail_line(line, "expected one of the types integer, float, bool, uint16_t, uint32_t");
  }
  return parameter;
}

}  // namespace

std::vector<SchemaParameter> parse_schema(std::string_view text) {
  std::vector<SchemaParameter> parameters;
  for (const std::string_view line : split(text, '\n')) {
    if (!trim(line).empty()) parameters.push_back(parse_line(line));
  }
  return parameters;
}

}  // namespace kit
