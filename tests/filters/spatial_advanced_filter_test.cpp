#include "filters/spatial_advanced_filter.h"

#include "filterprocessor/spatial.h"
#include "scenes.h"
#include "support/filter_driver.h"

namespace filterprocessor {
namespace {

constexpr const char* kName = "SpatialAdvancedFilter";
ErrorTexts out_of_range(const char* name) {
  return {"params out of range", "update_filter_config", name, 4};
}
ErrorTexts invalid(const char* field) { return {"invalid params", "updateConfig", field, 4}; }

devhost::FrameTraits room() {
  devhost::FrameTraits traits;
  traits.width = 200;
  traits.height = 130;
  traits.pixels = bench::stereo_scene(200, 130).pixels;
  traits.disparity.fx = 800;
  traits.disparity.baseline = 50;
  traits.disparity.dispIntPlace = 8;
  return traits;
}

Pixels filtered(FilterDriver& filter, const devhost::FrameTraits& traits) {
  const devhost::Frame output = filter.process(devhost::make_frame(traits));
  EXPECT_EQ(filter.last_error(), kNoError);
  return output ? devhost::inspect(output.get()).pixels : Pixels{};
}

Pixels smoothed(const devhost::FrameTraits& traits, const std::vector<std::uint16_t>& table,
                std::uint8_t shift, int magnitude = 1, float alpha = 0.5f, std::uint8_t radius = 1) {
  Pixels pixels = traits.pixels;
  depth_api_spatial_filter_origin_lut(pixels.data(), 200, 130, table.data(), shift, 7, magnitude, radius,
                                      1, 1, alpha);
  return pixels;
}

Pixels smoothed_fixed(const devhost::FrameTraits& traits, float difference) {
  Pixels pixels = traits.pixels;
  depth_api_spatial_filter_origin(pixels.data(), 200, 130, 1, 1, 1, 1, 0.5f, difference);
  return pixels;
}

const std::vector<std::uint16_t> kTable = {3, 15, 35, 62, 97, 140, 191};

TEST(SpatialAdvancedFilter, TurnsTheDisparityStepIntoStepsOfDepth) {
  FilterDriver filter(kName);
  const devhost::FrameTraits traits = room();
  const Pixels result = filtered(filter, traits);
  EXPECT_EQ(result, smoothed(traits, kTable, 9));
  EXPECT_NE(result, traits.pixels);
  EXPECT_EQ(filter.update({"3", "0.3", "160", "4"}), kNoError);
  EXPECT_EQ(filtered(filter, traits), smoothed(traits, kTable, 9, 3, 0.3f, 4));
  filter.reset();
  EXPECT_EQ(filtered(filter, traits), result);
}

TEST(SpatialAdvancedFilter, GoesOverDisparityFramesOnceWithAFixedStep) {
  FilterDriver filter(kName);
  devhost::FrameTraits traits = room();
  traits.pixel_type = ZV_PIXEL_TYPE_DISPARITY;
  traits.value_scale = 0;  // does not matter for disparity
  EXPECT_EQ(filter.update({"5", "0.5", "160", "1"}), kNoError);
  EXPECT_EQ(filtered(filter, traits), smoothed_fixed(traits, 160));
  traits.bits = 12;  // 4 fraction bits
  EXPECT_EQ(filtered(filter, traits), smoothed_fixed(traits, 10));
}

TEST(SpatialAdvancedFilter, KeepsTheGeometryOfAnEarlierFrameForLinearDepth) {
  FilterDriver filter(kName);
  devhost::FrameTraits traits = room();
  traits.pixel_type = ZV_PIXEL_TYPE_LINEAR_DEPTH;
  traits.value_scale = 0;  // not read
  traits.disparity = {};
  EXPECT_EQ(filtered(filter, traits), smoothed(traits, {160, 320, 480, 640, 800, 960, 1120}, 9));
  devhost::FrameTraits bad = room();
  bad.value_scale = 0;
  FilterDriver::output_of([&] { EXPECT_FALSE(filter.process(devhost::make_frame(bad))); });
  EXPECT_EQ(filter.last_error(), invalid("frame_info.depth_unit"));
  FilterDriver::output_of([&] { EXPECT_FALSE(filter.process(devhost::make_frame(traits))); });
  EXPECT_EQ(filter.last_error(), invalid("frame_info.depth_unit")) << "the unit of the frame before";
}

TEST(SpatialAdvancedFilter, OnlyHolesChangeInFramesOfOtherPixelTypes) {
  FilterDriver filter(kName);
  devhost::FrameTraits traits = room();
  traits.pixel_type = 9;
  EXPECT_EQ(filter.update({"1", "0.5", "160", "8"}), kNoError);
  const Pixels result = filtered(filter, traits);
  EXPECT_EQ(result, smoothed(traits, Pixels(7), 0, 1, 0.5f, 8));
  for (std::size_t i = 0; i < result.size(); ++i) {
    if (traits.pixels[i] != 0) {
      ASSERT_EQ(result[i], traits.pixels[i]);
    }
  }
  traits.pixel_type = -1;
  FilterDriver::output_of([&] { EXPECT_FALSE(filter.process(devhost::make_frame(traits))); });
  EXPECT_EQ(filter.last_error(), invalid("frame_info.pixel_type"));
}

TEST(SpatialAdvancedFilter, AFailedConfigurationLeavesTheOldTableInForce) {
  FilterDriver filter(kName);
  const devhost::FrameTraits traits = room();
  const Pixels result = filtered(filter, traits);
  devhost::FrameTraits bad = traits;
  bad.disparity.baseline = 0;
  FilterDriver::output_of([&] { EXPECT_FALSE(filter.process(devhost::make_frame(bad))); });
  EXPECT_EQ(filter.last_error(),
            (ErrorTexts{"update depth diff lut error", "updateConfig", "updateDepthDiffLut()", 4}));
  EXPECT_EQ(filtered(filter, bad), result) << "the same kind of frame is not tried again";
  bad.width = 0;
  FilterDriver::output_of([&] { EXPECT_FALSE(filter.process(devhost::make_frame(bad))); });
  EXPECT_EQ(filter.last_error(), invalid("frame_info.width||frame_info.height"));
}

TEST(SpatialAdvancedFilter, FramesWiderThanTheKernelsSizesFail) {
  FilterDriver filter(kName);
  devhost::FrameTraits traits = room();
  traits.width = 70000;
  traits.height = 1;
  traits.pixels.resize(70000);
  FilterDriver::output_of([&] { EXPECT_FALSE(filter.process(devhost::make_frame(traits))); });
  EXPECT_EQ(filter.last_error(),
            (ErrorTexts{"spatial advanced filter error", "filter_process", "SpatialaDvancedFilter", 0}));
}

TEST(SpatialAdvancedFilter, ChecksItsParametersInOrderAndStoresAllOrNone) {
  FilterDriver filter(kName);
  EXPECT_EQ(filter.update({"6", "0", "0", "9"}), out_of_range("magnitude"));
  EXPECT_EQ(filter.update({"1", "0.05", "160", "1"}), out_of_range("alpha"));
  EXPECT_EQ(filter.update({"1", "nan", "160", "1"}), out_of_range("alpha"));
  EXPECT_EQ(filter.update({"2", "0.1", "10001", "1"}), out_of_range("disp_diff"));
  EXPECT_EQ(filter.update({"2", "1", "1", "-1"}), out_of_range("radius"));
  EXPECT_EQ(filter.update({"1", "0.5", "160", "1", "1"}), kBadCount);
  const devhost::FrameTraits traits = room();
  EXPECT_EQ(filtered(filter, traits), smoothed(traits, kTable, 9));
}

}  // namespace
}  // namespace filterprocessor
