// One scenario for all filters, through the boundary.
#include "support/every_filter.h"

#include "kit/schema/schema.h"
#include "support/filter_driver.h"

namespace filterprocessor {
namespace {

struct EveryFilter : testing::TestWithParam<FilterUse> {
  const FilterUse& use() const { return GetParam(); }
};
INSTANTIATE_TEST_SUITE_P(Filters, EveryFilter, testing::ValuesIn(every_filter(1280, 720)),
                         [](const auto& use) { return std::string(use.param.name); });

TEST_P(EveryFilter, ServesAHostFromCreationToDestruction) {
  const devhost::LiveObjects before = devhost::live_objects();
  {
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
  EXPECT_EQ(devhost::live_objects(), before);
}

TEST(AllFilters, RefuseDataThatDoNotFitTheirDescription) {
  for (const FilterUse& use : every_filter(40, 24)) {
    SCOPED_TRACE(use.name);
    const devhost::FrameTraits traits = lively_frame(40, 24, use.pixel_type, 1);
    devhost::FrameTraits short_of_one = traits;
    short_of_one.pixels.pop_back();
    FilterDriver filter(use.name, use.configuration);
    const devhost::LiveObjects before = devhost::live_objects();
    EXPECT_EQ(filter.refused(short_of_one), kBadFrame);
    if (std::string(use.name) != "DepthResize") {  // which takes one size alone
      devhost::FrameTraits huge = traits;
      huge.width = huge.height = 4000000000u;
      EXPECT_EQ(filter.refused(huge), kBadFrame);
    }
    devhost::hide_data(true);
    EXPECT_EQ(filter.refused(traits), kBadFrame);
    devhost::hide_data(false);
    EXPECT_EQ(devhost::live_objects().frames, before.frames);
    EXPECT_FALSE(filter.filtered(traits).empty()) << "afterwards";
  }
}

}  // namespace
}  // namespace filterprocessor
