#include "kit/plugin/schema.h"
#include "support/filter_driver.h"

namespace filterprocessor {
namespace {

bool is_checked(const std::string& name) {
  return !name.starts_with("ex_") && !name.starts_with("x_") && !name.starts_with("y_");
}

/// Values of which a bad one is dropped without an error.
bool fails_in_silence(const std::string& name) {
  return name == "max_depth" || name == "min_depth" || name == "depth_uint";
}

/// A value a little further from the middle of the range than `end`.
std::string past(const std::string& end, const std::string& type, int direction) {
  if (type != "float") return std::to_string(std::stoi(end) + direction);
  return std::to_string(std::stod(end) * (1 + 0.01 * direction));
}

TEST(ParameterRanges, BothEndsAreAcceptedAndNothingPastThem) {
  for (int index = 0; index < zv_get_filter_count(); ++index) {
    const std::string filter_name = zv_get_filter_name(index);
    FilterDriver filter(filter_name);
    auto parameters = kit::parse_schema(filter.schema());
    std::vector<std::string> values;
    for (kit::SchemaParameter& parameter : parameters) {
      values.push_back(parameter.default_value);
      if (parameter.name == "scale") parameter.min = "0.1";    // the schema says 0.01
      if (parameter.name == "height") parameter.max = "1024";  // the schema says 800
    }
    ASSERT_EQ(filter.update(values), kNoError) << filter_name;
    for (std::size_t i = 0; i < parameters.size(); ++i) {
      const auto& [name, type, min, max, step, default_value, description] = parameters[i];
      const bool refuses = is_checked(name) && !fails_in_silence(name);
      const std::string named = filter_name == "HoleFillingFilter" ? "argv" : name;
      for (const int direction : {-1, 1}) {
        const std::string& end = direction < 0 ? min : max;
        values[i] = end;
        EXPECT_EQ(filter.update(values), kNoError) << filter_name << ", " << name << " = " << end;
        values[i] = past(end, type, direction);
        EXPECT_EQ(filter.update(values).args, refuses ? named : "")
            << filter_name << ", " << name << " = " << values[i];
      }
      values[i] = default_value;
    }
  }
}

}  // namespace
}  // namespace filterprocessor
