#include "filters/depth_resize.h"

#include "support/filter_driver.h"

namespace filterprocessor {
namespace {

const ErrorTexts kDisagrees = {"incorrect config schema", "filter_process", "DepthResize", 4};
const ErrorTexts kFailed = {"depth resize error", "filter_process", "DepthResize", 0};

devhost::FrameTraits ramp(std::uint32_t width, std::uint32_t height) {
  devhost::FrameTraits traits;
  traits.width = width;
  traits.height = height;
  traits.format = 3;
  traits.value_scale = 0.25f;
  traits.metadata = {{7, 70}};
  traits.intrinsic.fx = 500;
  traits.pixels.resize(std::size_t{width} * height);
  for (std::size_t i = 0; i < traits.pixels.size(); ++i) {
    traits.pixels[i] = static_cast<std::uint16_t>(i + 1);
  }
  return traits;
}

std::vector<std::string> config(int width, int height, const char* scale, int left = 0, int right = 0,
                                int top = 0, int bottom = 0) {
  return {std::to_string(width), std::to_string(height), scale,
          std::to_string(left),  std::to_string(right),  std::to_string(top),
          std::to_string(bottom)};
}

TEST(DepthResize, ScalesAndDescribesTheNewSize) {
  FilterDriver filter("DepthResize");
  EXPECT_EQ(filter.update(config(4, 2, "0.5", 1)), kNoError);
  for (const bool as_set : {false, true}) {
    const devhost::Frame frame = as_set ? devhost::make_frame_set(devhost::make_frame(ramp(6, 4)))
                                        : devhost::make_frame(ramp(6, 4));
    const devhost::Frame result = filter.process(frame);
    ASSERT_TRUE(result) << filter.last_error();
    const devhost::Frame output = devhost::depth_frame_of(result.get());
    const devhost::FrameTraits traits = devhost::inspect(output.get());
    EXPECT_EQ(traits.pixels, (std::vector<std::uint16_t>{0, 1, 3, 5, 0, 13, 15, 17}));
    EXPECT_EQ(traits.type, as_set ? ZV_FRAME_TYPE_SET : ZV_FRAME_TYPE_DEPTH)
        << "made with the type of what was handed in";
    EXPECT_EQ(traits.width, 4u);
    EXPECT_EQ(traits.height, 2u);
    EXPECT_EQ(traits.format, 3);
    EXPECT_EQ(traits.value_scale, 0.25f);
    EXPECT_EQ(traits.metadata.at(7), 70);
    EXPECT_EQ(devhost::inspect_profile(output.get()).width, 4u);
    EXPECT_EQ(devhost::inspect_profile(output.get()).intrinsic.fx, 500);
    EXPECT_EQ(devhost::inspect_profile(devhost::depth_frame_of(frame.get()).get()).width, 6u)
        << "the input's profile stays";
  }
}

TEST(DepthResize, AFilterNeitherConfiguredNorResetFailsOnEveryFrame) {
  FilterDriver filter("DepthResize");
  const devhost::Frame frame = devhost::make_frame(ramp(6, 4));
  const devhost::LiveObjects before = devhost::live_objects();
  const std::string printed = FilterDriver::output_of([&] { EXPECT_FALSE(filter.process(frame)); });
  EXPECT_EQ(filter.last_error(), kFailed);
  EXPECT_EQ(printed,
            "zv_error was raised: \n\tcall: filter_process(DepthResize)\n"
            "\tmessage: depth resize error\n\terror type: 0\n")
      << "once, after the output was deleted";
  filter.reset();
  EXPECT_FALSE(filter.process(frame));
  EXPECT_EQ(filter.last_error(), kDisagrees);
  EXPECT_EQ(devhost::live_objects(), before);
  const devhost::FrameTraits full = ramp(1280, 720);
  EXPECT_EQ(devhost::inspect(filter.process(devhost::make_frame(full)).get()).pixels, full.pixels);
}

TEST(DepthResize, StoresWhatComesBeforeABadValue) {
  const ErrorTexts width = {"params out of range", "update_filter_config", "dst_width", 4};
  const ErrorTexts height = {"params out of range", "update_filter_config", "dst_height", 4};
  const ErrorTexts scale = {"params out of range", "update_filter_config", "scale", 4};
  FilterDriver filter("DepthResize");
  EXPECT_EQ(filter.update(config(7, 5, "1", 1000, -1000, 999, -999)), kNoError);
  EXPECT_EQ(filter.update({"6", "5"}), kBadCount);
  EXPECT_EQ(filter.update(config(0, 9, "2")), width);
  EXPECT_EQ(filter.update(config(65536, 9, "2")), width);
  EXPECT_EQ(filter.update({"nan", "9", "2", "0", "0", "0", "0"}), width);
  EXPECT_FALSE(filter.process(devhost::make_frame(ramp(6, 4))));
  EXPECT_EQ(filter.last_error(), kDisagrees);
  EXPECT_TRUE(filter.process(devhost::make_frame(ramp(7, 5)))) << "all of that changed nothing";
  EXPECT_EQ(filter.update({"6.9", "0.9", "2", "0", "0", "0", "0"}), height);
  EXPECT_TRUE(filter.process(devhost::make_frame(ramp(6, 5)))) << "the width was stored, truncated";
  EXPECT_EQ(filter.update(config(5, 4, "0.05")), scale) << "the schema would allow it";
  EXPECT_EQ(filter.update(config(5, 4, "50.1")), scale);
  EXPECT_TRUE(filter.process(devhost::make_frame(ramp(5, 4)))) << "both sizes were stored";
}

TEST(DepthResize, TakesTheEndsOfItsRangesAndReadsFloatsEverywhere) {
  FilterDriver filter("DepthResize");
  EXPECT_EQ(filter.update(config(65535, 65535, "50")), kNoError);
  EXPECT_EQ(filter.update(config(1, 1, "0.1")), kNoError);
  EXPECT_EQ(filter.update({"16", "4", "1", "1e1", "0", "0", "0"}), kNoError);
  EXPECT_TRUE(filter.process(devhost::make_frame(ramp(6, 4)))) << filter.last_error();
}

TEST(DepthResize, RefusesATargetOfMoreThan32BitsOfBytesBeforeItMakesAFrame) {
  FilterDriver filter("DepthResize");
  EXPECT_EQ(filter.update(config(60000, 60000, "1", 59994, 0, 59996, 0)), kNoError);
  devhost::start_call_log();
  EXPECT_FALSE(filter.process(devhost::make_frame(ramp(6, 4))));
  for (const std::string& call : devhost::stop_call_log()) EXPECT_NE(call, "zv_create_frame");
  EXPECT_EQ(filter.last_error(), kFailed);
}

}  // namespace
}  // namespace filterprocessor
