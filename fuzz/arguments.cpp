#include "arguments.h"

#include <algorithm>
#include <cstdlib>

namespace filterprocessor::fuzz {

namespace {

std::string in_range(Source& input, const kit::SchemaParameter& parameter) {
  const double min = std::atof(parameter.min.c_str());
  const double max = std::atof(parameter.max.c_str());
  switch (input.integer(0, 7)) {
    case 0:
      return parameter.default_value;
    case 1:
      return parameter.min;
    case 2:
      return parameter.max;
    case 3:
      return std::to_string(min + (max - min) * input.integer(0, 4096) / 4096);
    default: {  // small numbers are what small frames need
      const double unit = parameter.type == "float" ? 0.05 : 1;
      return std::to_string(std::min(max, min + unit * input.integer(0, 60)));
    }
  }
}

std::string anything(Source& input, const kit::SchemaParameter& parameter) {
  switch (input.integer(0, 3)) {
    case 0:
      return std::to_string(std::atof(parameter.min.c_str()) - 1);
    case 1:
      return std::to_string(std::atof(parameter.max.c_str()) + 1);
    case 2:
      return input.pick({"nan", "inf", "-inf", "", "x", "-1", "0", "1e400", "1e-400",
                         "99999999999999999999", "-99999999999999999999", "2147483648", " 1", "0x10",
                         "1,5", "0.1", "50"});
    default: {
      const auto bytes = input.take(static_cast<std::size_t>(input.integer(0, 12)));
      return std::string(bytes.begin(), bytes.end());
    }
  }
}

}  // namespace

std::vector<std::string> any_arguments(Source& input,
                                       const std::vector<kit::SchemaParameter>& parameters) {
  std::vector<std::string> texts;
  const bool usual = !input.one_in(4);
  for (const kit::SchemaParameter& parameter : parameters) {
    texts.push_back(usual || input.flag() ? in_range(input, parameter) : anything(input, parameter));
  }
  if (input.one_in(16)) texts.resize(static_cast<std::size_t>(input.integer(0, 12)), "1");
  return texts;
}

}  // namespace filterprocessor::fuzz
