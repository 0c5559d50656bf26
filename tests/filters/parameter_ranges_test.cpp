#include "kit/schema/schema.h"
#include "support/every_filter.h"
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
      for (const std::string& end : {min, max}) {
        values[i] = end;
        EXPECT_EQ(filter.update(values), kNoError) << filter_name << ", " << name << " = " << end;
      }
      const std::string refusal =
          filter_name == "HoleFillingFilter"
              ? error_text("invalid hole filling mode params", "update_filter_config", "argv")
              : out_of_range(name);
      const bool refuses = is_checked(name) && !fails_in_silence(name);
      for (const std::string& bad :
           {past(min, type, -1), past(max, type, 1), std::string(type == "float" ? "nan" : "-1")}) {
        values[i] = bad;
        EXPECT_EQ(filter.update(values), refuses ? refusal : kNoError)
            << filter_name << ", " << name << " = " << bad;
      }
      values[i] = default_value;
    }
  }
}

TEST(ParameterRanges, OfSeveralBadValuesTheFirstIsNamedAndNothingIsStored) {
  const std::vector<FilterUse> uses = every_filter(320, 200);
  for (const FilterUse& use : {uses[2], uses[3], uses[6]}) {  // the others store what comes before it
    FilterDriver filter(use.name, use.configuration);
    const auto parameters = kit::parse_schema(filter.schema());
    const devhost::FrameTraits frame = lively_frame(320, 200, use.pixel_type, 0);
    const Pixels before = filter.filtered(frame);
    std::vector<std::string> values = use.other;
    for (std::size_t i = values.size(); i-- > 0;) {
      values[i] = "-1";
      EXPECT_EQ(filter.update(values), out_of_range(parameters[i].name));
      EXPECT_EQ(filter.filtered(frame), before) << use.name << ", " << parameters[i].name;
    }
    EXPECT_EQ(filter.update(use.other), kNoError);
    EXPECT_NE(filter.filtered(frame), before) << use.name;
  }
}

}  // namespace
}  // namespace filterprocessor
