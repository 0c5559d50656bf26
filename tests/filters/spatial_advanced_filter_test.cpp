#include "filters/spatial_advanced_filter.h"

#include "filterprocessor/spatial.h"
#include "scenes.h"
#include "support/filter_driver.h"

namespace filterprocessor {
namespace {

constexpr const char* kName = "SpatialAdvancedFilter";

devhost::FrameTraits room() {
  devhost::FrameTraits traits = frame_of(bench::stereo_scene(200, 130).pixels, 130);
  traits.disparity.fx = 800;
  traits.disparity.baseline = 50;
  traits.disparity.dispIntPlace = 8;
  return traits;
}

Pixels smoothed(const devhost::FrameTraits& traits, const Pixels& table, int magnitude = 1,
                float alpha = 0.5f, std::uint8_t radius = 1) {
  Pixels pixels = traits.pixels;
  depth_api_spatial_filter_origin_lut(pixels.data(), 200, 130, table.data(), 9, 7, magnitude, radius, 1,
                                      1, alpha);
  return pixels;
}

Pixels smoothed_fixed(const devhost::FrameTraits& traits, float difference) {
  Pixels pixels = traits.pixels;
  depth_api_spatial_filter_origin(pixels.data(), 200, 130, 1, 1, 1, 1, 0.5f, difference);
  return pixels;
}

const Pixels kTable = {3, 15, 35, 62, 97, 140, 191};

TEST(SpatialAdvancedFilter, TurnsTheDisparityStepIntoStepsOfDepth) {
  FilterDriver filter(kName);
  const devhost::FrameTraits traits = room();
  const Pixels result = filter.filtered(traits);
  EXPECT_EQ(result, smoothed(traits, kTable));
  EXPECT_NE(result, traits.pixels);
  EXPECT_EQ(filter.update({"3", "0.3", "160", "4"}), kNoError);
  EXPECT_EQ(filter.filtered(traits), smoothed(traits, kTable, 3, 0.3f, 4));
  filter.reset();
  EXPECT_EQ(filter.filtered(traits), result);
}

TEST(SpatialAdvancedFilter, GoesOverDisparityFramesOnceWithAFixedStep) {
  FilterDriver filter(kName, {"5", "0.5", "160", "1"});
  devhost::FrameTraits traits = room();
  traits.pixel_type = ZV_PIXEL_TYPE_DISPARITY;
  traits.value_scale = 0;  // does not matter for disparity
  EXPECT_EQ(filter.filtered(traits), smoothed_fixed(traits, 160));
  traits.bits = 12;  // 4 fraction bits
  EXPECT_EQ(filter.filtered(traits), smoothed_fixed(traits, 10));
}

TEST(SpatialAdvancedFilter, KeepsTheGeometryOfAnEarlierFrameForLinearDepth) {
  FilterDriver filter(kName);
  devhost::FrameTraits traits = room();
  traits.pixel_type = ZV_PIXEL_TYPE_LINEAR_DEPTH;
  traits.value_scale = 0;  // not read
  traits.disparity = {};
  EXPECT_EQ(filter.filtered(traits), smoothed(traits, {160, 320, 480, 640, 800, 960, 1120}));
  devhost::FrameTraits bad = room();
  bad.value_scale = 0;
  EXPECT_EQ(filter.refused(bad), invalid("frame_info.depth_unit"));
  EXPECT_EQ(filter.refused(traits), invalid("frame_info.depth_unit")) << "the unit of the frame before";
}

TEST(SpatialAdvancedFilter, OnlyHolesChangeInFramesOfOtherPixelTypes) {
  FilterDriver filter(kName, {"1", "0.5", "160", "8"});
  devhost::FrameTraits traits = room();
  traits.pixel_type = 9;
  EXPECT_EQ(filter.filtered(traits), smoothed(traits, Pixels(7), 1, 0.5f, 8));
  traits.pixel_type = -1;
  EXPECT_EQ(filter.refused(traits), invalid("frame_info.pixel_type"));
}

TEST(SpatialAdvancedFilter, AFailedConfigurationLeavesTheOldTableInForce) {
  FilterDriver filter(kName, {"1", "0.4", "160", "1"});
  const Pixels result = filter.filtered(room());
  devhost::FrameTraits bad = room();
  bad.disparity.baseline = 0;
  EXPECT_EQ(filter.refused(bad),
            error_text("update depth diff lut error", "updateConfig", "updateDepthDiffLut()"));
  EXPECT_EQ(filter.filtered(bad), result) << "the same kind of frame is not tried again";
  SpatialAdvancedFilter failed_once;
  bad.bits = 12;  // the step is rescaled before the table fails
  const devhost::Frame frame = devhost::make_frame(bad);
  EXPECT_NE(FilterDriver::output_of([&] {
              EXPECT_EQ(failed_once.filter_process(frame.get(), nullptr), nullptr);
              failed_once.print_key_params();
            }).find("current_filter_params: \nalpha:     0.5\ndisp_diff: 160\n"),
            std::string::npos)
      << "the values given are stored";

  bad.width = 0;
  EXPECT_EQ(filter.refused(bad), invalid("frame_info.width||frame_info.height"));
}

TEST(SpatialAdvancedFilter, FramesWiderThanTheKernelsSizesFail) {
  FilterDriver filter(kName);
  devhost::FrameTraits wide = room();
  wide.width = 70000;
  wide.height = 1;
  wide.pixels.resize(70000);
  EXPECT_EQ(filter.refused(wide),
            error_text("spatial advanced filter error", "filter_process", "SpatialaDvancedFilter", 0));
}

}  // namespace
}  // namespace filterprocessor
