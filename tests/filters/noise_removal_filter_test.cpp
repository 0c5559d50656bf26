#include "filters/noise_removal_filter.h"

#include "filterprocessor/speckle.h"
#include "scenes.h"
#include "support/filter_driver.h"

namespace filterprocessor {
namespace {

constexpr const char* kName = "NoiseRemovalFilter";
const std::string kKernel =
    error_text("noise removal filter error", "filter_process", "NoiseRemovalFilter", 0);

devhost::FrameTraits room(int width, int height) {
  devhost::FrameTraits traits =
      frame_of(bench::stereo_scene(width, height).pixels, static_cast<std::uint32_t>(height));
  traits.disparity.fx = 800;
  traits.disparity.baseline = 50;
  traits.disparity.dispIntPlace = 8;
  traits.disparity.packMode = 2;
  traits.disparity.isDualCamera = 1;
  return traits;
}

/// What the kernel makes of the frame with these parameters; a null table means the fixed threshold.
Pixels despeckled(const devhost::FrameTraits& traits, Pixels table, int max_diff, int max_size,
                  std::uint16_t invalid_value = 0) {
  Pixels pixels = traits.pixels;
  std::vector<std::uint8_t> buffer(9 * pixels.size() + 1);
  depth_api_softfilter(buffer.data(), pixels.data(), nullptr, static_cast<int>(traits.width),
                       static_cast<int>(traits.height), table.empty() ? nullptr : table.data(), 9,
                       static_cast<std::uint8_t>(table.size()), max_diff, max_size, 4, 4, invalid_value,
                       1);
  return pixels;
}

/// t = 256/256 * 500 * 500 / 40000 = 6.25, times 1, 4, 9, ...
const std::vector<std::uint16_t> kTable = {6, 25, 56, 100, 156, 225, 306};

TEST(NoiseRemovalFilter, ScalesTheSizeLimitWithTheAreaOfTheFrame) {
  for (const auto& [width, height, max_size] :
       {std::tuple{848, 480, 80}, {424, 240, 20}, {640, 400, 50}, {1280, 800, 201}, {100, 70, 1}}) {
    const devhost::FrameTraits traits = room(width, height);
    const Pixels result = FilterDriver(kName).filtered(traits);
    EXPECT_EQ(result, despeckled(traits, kTable, 0, max_size)) << width << " x " << height;
    EXPECT_NE(result, traits.pixels);
  }
}

TEST(NoiseRemovalFilter, RescalesTheDifferenceByFractionBits) {
  FilterDriver filter(kName);
  devhost::FrameTraits traits = room(424, 240);
  traits.bits = 12;  // 4 fraction bits: the difference becomes 16, and the table stays
  EXPECT_EQ(filter.filtered(traits), despeckled(traits, kTable, 0, 20));
  traits.pixel_type = ZV_PIXEL_TYPE_DISPARITY;
  EXPECT_EQ(filter.filtered(traits), despeckled(traits, {}, 16, 20));
  traits.pixel_type = ZV_PIXEL_TYPE_LINEAR_DEPTH;
  EXPECT_EQ(filter.filtered(traits), despeckled(traits, {256, 512, 768, 1024, 1280, 1536, 1792}, 0, 20));
  traits.pixel_type = 7;  // an empty table: only equal neighbours join
  EXPECT_EQ(filter.filtered(traits), despeckled(traits, Pixels(7), 0, 20));
  EXPECT_EQ(filter.update({"80", "10000", "848", "480"}), kNoError);
  traits.pixel_type = ZV_PIXEL_TYPE_LINEAR_DEPTH;
  EXPECT_EQ(filter.filtered(traits),
            despeckled(traits, {10000, 20000, 30000, 40000, 50000, 60000, 4464}, 0, 20))
      << "entries keep their low 16 bits";
}

TEST(NoiseRemovalFilter, KnowsTheInvalidCodeOfEachCamera) {
  struct Case {
    std::uint8_t dual, mode;
    std::uint16_t invalid_value;
  };
  for (const Case& c : {Case{1, 2, 0}, {1, 4, 0}, {0, 1, 0}, {0, 4, 65532}, {0, 2, 8192}, {0, 3, 8192}}) {
    devhost::FrameTraits traits = room(120, 80);
    traits.pixel_type = ZV_PIXEL_TYPE_DISPARITY;
    traits.disparity.isDualCamera = c.dual;
    traits.disparity.packMode = c.mode;
    EXPECT_EQ(FilterDriver(kName).filtered(traits), despeckled(traits, {}, 256, 1, c.invalid_value));
  }
}

TEST(NoiseRemovalFilter, ShiftFollowsTheDepthUnit) {
  DepthDifferenceTable table;
  const auto shift = [&](double unit) {
    EXPECT_TRUE(table.update({.depth_unit = unit, .depth_flag = 0, .bxf = 40000}, 160));
    return int{table.shift};
  };
  EXPECT_EQ(shift(0.05), 13);
  EXPECT_EQ(shift(0.1), 12);
  EXPECT_EQ(shift(0.5), 10);
  EXPECT_EQ(shift(10.0), 6);
  EXPECT_EQ(shift(1.0), 9);
  EXPECT_EQ(table.entries, (std::array<std::uint16_t, 7>{3, 15, 35, 62, 97, 140, 191}));
  EXPECT_FALSE(table.update({.depth_flag = 0, .bxf = 0}, 160));
  EXPECT_FALSE(table.update({.depth_unit = 0, .depth_flag = 0, .bxf = 1}, 160));
  EXPECT_EQ(table.entries[6], 191) << "a failure changes nothing";
  EXPECT_TRUE(table.update({.depth_unit = 1e-9, .depth_flag = 0, .bxf = 1e-9f}, 10000));
  EXPECT_TRUE(table.update({.depth_flag = 5}, 160));
  EXPECT_EQ(table.entries, (std::array<std::uint16_t, 7>{}));
  EXPECT_EQ(table.shift, 13) << "kept";
}

TEST(NoiseRemovalFilter, ScalesFromTheSizeItIsConfiguredFor) {
  FilterDriver filter(kName, {"1000", "128", "1280", "1024"});
  const devhost::FrameTraits traits = room(424, 240);
  EXPECT_EQ(filter.filtered(traits), despeckled(traits, {3, 12, 28, 50, 78, 112, 153}, 0, 77));
  filter.reset();
  EXPECT_EQ(filter.filtered(traits), despeckled(traits, kTable, 0, 20));
}

TEST(NoiseRemovalFilter, AFailedConfigurationIsNotRetriedForTheSameKindOfFrame) {
  for (const auto& [field, baseline, value_scale, width] :
       {std::tuple{"frame_info.bxf", 0.0f, 1.0f, 424u},
        {"frame_info.depth_unit", 50.0f, 0.0f, 424u},
        {"frame_info.width||frame_info.height", 50.0f, 1.0f, 0u}}) {
    FilterDriver filter(kName, {"80", "100", "848", "480"});
    EXPECT_EQ(filter.update({"80", "256", "848", "480"}), kNoError);
    devhost::FrameTraits good = room(424, 240);
    devhost::FrameTraits bad = good;
    bad.disparity.baseline = baseline;
    bad.value_scale = value_scale;
    bad.width = width;
    EXPECT_EQ(filter.refused(bad), invalid(field));
    EXPECT_EQ(filter.printed(), invalid(field));
    EXPECT_EQ(filter.refused(bad), kKernel) << "there is no buffer to work in";
    EXPECT_EQ(filter.filtered(good), despeckled(good, kTable, 0, 20));
  }
}

TEST(NoiseRemovalFilter, DepthOfAnotherSizeThanConfiguredNeedsGeometry) {
  const std::string no_table =
      error_text("update depth diff lut error", "updateConfig", "updateDepthDiffLut()");
  for (const auto& [width, height] : {std::pair{424, 240}, {848, 240}, {424, 480}, {848, 480}}) {
    FilterDriver filter(kName);
    devhost::FrameTraits traits = room(width, height);
    traits.disparity.baseline = 0;
    const bool as_configured = width == 848 && height == 480;
    EXPECT_EQ(filter.refused(traits), as_configured ? no_table : invalid("frame_info.bxf"))
        << width << " x " << height;
  }
}

TEST(NoiseRemovalFilter, AfterAFailedConfigurationAnOlderBufferServesIfItIsLargeEnough) {
  for (const auto& [height, serves] : {std::pair{24, true}, {49, false}}) {
    FilterDriver filter(kName);
    EXPECT_FALSE(filter.filtered(room(64, 48)).empty());
    devhost::FrameTraits traits = room(64, height);
    traits.value_scale = 0;
    EXPECT_EQ(filter.refused(traits), invalid("frame_info.depth_unit"));
    if (serves) {
      EXPECT_EQ(filter.filtered(traits).size(), traits.pixels.size());
    } else {
      EXPECT_EQ(filter.refused(traits), kKernel);
    }
  }
}

TEST(NoiseRemovalFilter, CallsTheHostInOrder) {
  FilterDriver filter(kName);
  const devhost::Frame set = devhost::make_frame_set(devhost::make_frame(room(100, 70)));
  devhost::start_call_log();
  EXPECT_TRUE(filter.process(set));
  EXPECT_EQ(devhost::stop_call_log(),
            (std::vector<std::string>{
                "zv_frame_get_type", "zv_frameset_get_depth_frame", "zv_frame_get_format",
                "zv_video_frame_get_pixel_type", "zv_video_frame_get_width", "zv_video_frame_get_height",
                "zv_depth_frame_get_value_scale", "zv_frame_get_stream_profile",
                "zv_disparity_based_stream_profile_get_disparity_param",
                "zv_video_frame_get_pixel_available_bit_size", "zv_create_frame_from_other_frame",
                "zv_frame_get_data", "zv_frame_get_data_size", "zv_delete_stream_profile",
                "zv_create_frame_from_other_frame", "zv_frameset_push_frame"}));
}

}  // namespace
}  // namespace filterprocessor
