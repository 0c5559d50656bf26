// What holds for all filters, through the boundary.
#include "support/every_filter.h"

#include "kit/schema/schema.h"
#include "support/filter_driver.h"

namespace filterprocessor {
namespace {

/// No test of the program leaves a frame or profile.
struct NothingIsLeft : testing::EmptyTestEventListener {
  void OnTestEnd(const testing::TestInfo&) override {
    EXPECT_EQ(devhost::live_objects(), devhost::LiveObjects{});
  }
};
const bool kWatched = (testing::UnitTest::GetInstance()->listeners().Append(new NothingIsLeft), true);

struct EveryFilter : testing::TestWithParam<FilterUse> {
  const FilterUse& use() const { return GetParam(); }
};
INSTANTIATE_TEST_SUITE_P(Filters, EveryFilter, testing::ValuesIn(every_filter(1280, 720)),
                         [](const auto& use) { return std::string(use.param.name); });

TEST_P(EveryFilter, ServesAHostFromCreationToDestruction) {
  FilterDriver filter(use().name);
  std::vector<std::string> defaults;
  for (const kit::SchemaParameter& parameter : kit::parse_schema(filter.schema())) {
    defaults.push_back(parameter.default_value);
  }
  ASSERT_EQ(filter.update(defaults), kNoError);
  const devhost::FrameTraits traits = lively_frame(1280, 720, use().pixel_type, 3);
  const devhost::Frame input = devhost::make_frame(traits);
  const devhost::Frame output = filter.process(input);
  ASSERT_TRUE(output) << filter.last_error();
  const devhost::FrameTraits result = devhost::inspect(output.get());
  EXPECT_EQ(result.type, ZV_FRAME_TYPE_DEPTH);
  EXPECT_EQ(devhost::inspect(input.get()).pixels, traits.pixels) << "the input never changes";

  FilterDriver other(use().name);
  ASSERT_EQ(other.update(defaults), kNoError);
  const devhost::Frame set = other.process(devhost::make_frame_set(devhost::make_frame(traits)));
  ASSERT_TRUE(set) << other.last_error();
  EXPECT_EQ(zv_frame_get_type(set.get(), nullptr), ZV_FRAME_TYPE_SET);
  EXPECT_EQ(devhost::inspect(devhost::depth_frame_of(set.get()).get()).pixels, result.pixels)
      << "alone or in a set";

  EXPECT_FALSE(filter.process(nullptr));
  EXPECT_EQ(filter.last_error(), kNoError);
  EXPECT_FALSE(filter.process(devhost::make_frame_set(nullptr)));
  EXPECT_EQ(filter.last_error(), kBadFrameType);
  for (const int type : {0, 2, 4, -3}) {
    devhost::FrameTraits foreign = traits;
    foreign.type = type;
    EXPECT_EQ(filter.refused(foreign), kBadFrameType);
    EXPECT_EQ(filter.printed(), "") << "the filter's own error is not a host error";
  }
  filter.reset();
  EXPECT_EQ(filter.update(defaults), kNoError);
  EXPECT_EQ(filter.filtered(traits), result.pixels) << "after a reset";
  defaults.push_back("1");
  const bool takes_anything = std::string(use().name) == "HardwareD2DCorrectionFilter";
  EXPECT_EQ(filter.update(defaults), takes_anything ? kNoError : kBadCount);
}

TEST(AllFilters, RefuseDataThatDoNotFitTheirDescription) {
  for (const FilterUse& use : every_filter(40, 24)) {
    SCOPED_TRACE(use.name);
    const devhost::FrameTraits traits = lively_frame(40, 24, use.pixel_type, 1);
    devhost::FrameTraits short_of_one = traits;
    short_of_one.pixels.pop_back();
    FilterDriver filter(use.name, use.configuration);
    EXPECT_EQ(filter.refused(short_of_one), kBadFrame);
    if (std::string(use.name) != "DepthResize") {  // which takes one size alone
      devhost::FrameTraits huge = traits;
      huge.width = huge.height = 4000000000u;
      EXPECT_EQ(filter.refused(huge), kBadFrame);
    }
    devhost::hide_data(true);
    EXPECT_EQ(filter.refused(traits), kBadFrame);
    devhost::hide_data(false);
    EXPECT_FALSE(filter.filtered(traits).empty()) << "afterwards";
  }
}

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
