#include <numeric>

#include "support/filter_driver.h"

namespace filterprocessor {
namespace {

const std::string kDisagrees = error_text("incorrect config schema", "filter_process", "DepthResize");
const std::string kFailed = error_text("depth resize error", "filter_process", "DepthResize", 0);

/// Pixels 1, 2, 3 and so on.
devhost::FrameTraits ramp(std::uint32_t width, std::uint32_t height) {
  Pixels pixels(std::size_t{width} * height);
  std::iota(pixels.begin(), pixels.end(), std::uint16_t{1});
  return frame_of(pixels, height);
}

TEST(DepthResize, ScalesAndDescribesTheNewSize) {
  FilterDriver filter("DepthResize", {"4", "2", "0.5", "1", "0", "0", "0"});
  devhost::FrameTraits source = ramp(6, 4);
  source.format = 3;
  source.value_scale = 0.25f;
  source.metadata = {{7, 70}};
  source.intrinsic.fx = 500;
  const devhost::Frame frame = devhost::make_frame(source);
  for (const bool as_set : {false, true}) {
    const devhost::Frame set = devhost::make_frame_set(devhost::make_frame(source));
    const devhost::Frame result = filter.process(as_set ? set : frame);
    ASSERT_TRUE(result) << filter.last_error();
    const devhost::Frame output = devhost::depth_frame_of(result.get());
    const devhost::FrameTraits traits = devhost::inspect(output.get());
    EXPECT_EQ(traits.pixels, (Pixels{0, 1, 3, 5, 0, 13, 15, 17}));
    EXPECT_EQ(traits.type, as_set ? ZV_FRAME_TYPE_SET : ZV_FRAME_TYPE_DEPTH)
        << "made with the type of what was handed in";
    EXPECT_EQ(traits.width, 4u);
    EXPECT_EQ(traits.height, 2u);
    EXPECT_EQ(traits.format, 3);
    EXPECT_EQ(traits.value_scale, 0.25f);
    EXPECT_EQ(traits.metadata.at(7), 70);
    EXPECT_EQ(devhost::inspect_profile(output.get()).width, 4u);
    EXPECT_EQ(devhost::inspect_profile(output.get()).intrinsic.fx, 500);
  }
  EXPECT_EQ(devhost::inspect_profile(frame.get()).width, 6u) << "the input's profile stays";
}

TEST(DepthResize, AFilterNeitherConfiguredNorResetFailsOnEveryFrame) {
  FilterDriver filter("DepthResize");
  EXPECT_EQ(filter.refused(ramp(6, 4)), kFailed);
  EXPECT_EQ(filter.printed(), kFailed) << "once, after the output was deleted";
  filter.reset();
  EXPECT_EQ(filter.refused(ramp(6, 4)), kDisagrees);
  EXPECT_EQ(filter.filtered(ramp(1280, 720)), ramp(1280, 720).pixels);
}

TEST(DepthResize, StoresWhatComesBeforeABadValue) {
  FilterDriver filter("DepthResize", {"7", "5", "1", "1e3", "-1000", "999", "-999"});
  EXPECT_EQ(filter.update({"0", "9", "2", "0", "0", "0", "0"}), out_of_range("dst_width"));
  EXPECT_EQ(filter.refused(ramp(6, 4)), kDisagrees);
  EXPECT_FALSE(filter.filtered(ramp(7, 5)).empty()) << "that changed nothing";
  EXPECT_EQ(filter.update({"6.9", "0.9", "2", "0", "0", "0", "0"}), out_of_range("dst_height"));
  EXPECT_FALSE(filter.filtered(ramp(6, 5)).empty()) << "the width was stored, truncated";
  EXPECT_EQ(filter.update({"5", "4", "0.05", "0", "0", "0", "0"}), out_of_range("scale"));
  EXPECT_FALSE(filter.filtered(ramp(5, 4)).empty()) << "both sizes were stored";
}

TEST(DepthResize, RefusesATargetOfMoreThan32BitsOfBytesBeforeItMakesAFrame) {
  FilterDriver filter("DepthResize", {"60000", "60000", "1", "59994", "0", "59996", "0"});
  devhost::start_call_log();
  EXPECT_EQ(filter.refused(ramp(6, 4)), kFailed);
  for (const std::string& call : devhost::stop_call_log()) EXPECT_NE(call, "zv_create_frame");
}

}  // namespace
}  // namespace filterprocessor
