// One scenario for all filters, through the boundary.
#include "support/every_filter.h"

#include "kit/plugin/schema.h"
#include "support/filter_driver.h"

namespace filterprocessor {
namespace {

struct EveryFilter : testing::TestWithParam<FilterUse> {
  const FilterUse& use() const { return GetParam(); }
  devhost::Frame frame() const {
    return devhost::make_frame(lively_frame(1280, 720, use().pixel_type, 3));
  }
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

    const devhost::Frame input = frame();
    const auto pixels = devhost::inspect(input.get()).pixels;
    const devhost::Frame output = filter.process(input);
    ASSERT_TRUE(output) << filter.last_error();
    EXPECT_EQ(devhost::inspect(output.get()).type, ZV_FRAME_TYPE_DEPTH);
    EXPECT_EQ(devhost::inspect(input.get()).pixels, pixels) << "the input never changes";

    FilterDriver other(use().name);
    ASSERT_EQ(other.update(defaults), kNoError);
    const devhost::Frame set = other.process(devhost::make_frame_set(frame()));
    ASSERT_TRUE(set) << other.last_error();
    EXPECT_EQ(zv_frame_get_type(set.get(), nullptr), ZV_FRAME_TYPE_SET);
    EXPECT_EQ(devhost::inspect(devhost::depth_frame_of(set.get()).get()).pixels,
              devhost::inspect(output.get()).pixels)
        << "alone or in a set";

    EXPECT_FALSE(filter.process(nullptr));
    EXPECT_EQ(filter.last_error(), kNoError);
    devhost::FrameTraits foreign = devhost::inspect(input.get());
    foreign.type = 2;
    EXPECT_FALSE(filter.process(devhost::make_frame(foreign)));
    EXPECT_EQ(filter.last_error(), kBadFrameType);
    EXPECT_FALSE(filter.process(devhost::make_frame_set(nullptr)));
    EXPECT_EQ(filter.last_error(), kBadFrameType);

    defaults.push_back("1");
    const bool takes_anything = std::string(use().name) == "HardwareD2DCorrectionFilter";
    EXPECT_EQ(filter.update(defaults), takes_anything ? kNoError : kBadCount);
    filter.reset();
    EXPECT_TRUE(filter.process(input)) << "after a reset: " << filter.last_error();
  }
  EXPECT_EQ(devhost::live_objects(), before);
}

TEST(AllFilters, RefusesAFrameWithoutData) {
  for (const FilterUse& use : every_filter(40, 24)) {
    const devhost::Frame input = devhost::make_frame(lively_frame(40, 24, use.pixel_type, 1));
    FilterDriver filter(use.name);
    EXPECT_EQ(filter.update(use.configuration), kNoError);
    const devhost::LiveObjects before = devhost::live_objects();
    devhost::hide_data(true);
    EXPECT_FALSE(filter.process(input)) << use.name;
    EXPECT_EQ(filter.last_error(), kBadFrame) << use.name;
    devhost::hide_data(false);
    EXPECT_EQ(devhost::live_objects().frames, before.frames) << use.name;
    EXPECT_TRUE(filter.process(input)) << use.name << " afterwards: " << filter.last_error();
  }
}

}  // namespace
}  // namespace filterprocessor
