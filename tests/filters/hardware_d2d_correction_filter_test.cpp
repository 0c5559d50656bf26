#include "filters/hardware_d2d_correction_filter.h"

#include "support/filter_driver.h"

namespace filterprocessor {
namespace {

/// fx times baseline is 46000, so a correction of 8 gives 5750.
devhost::FrameTraits corrected(std::int64_t correction, Pixels pixels = {5749, 5750, 5751, 0}) {
  devhost::FrameTraits traits;
  traits.width = static_cast<std::uint32_t>(pixels.size());
  traits.height = 1;
  traits.pixels = std::move(pixels);
  traits.metadata[32] = correction;
  traits.disparity.fx = 920;
  traits.disparity.baseline = 50;
  return traits;
}

Pixels filtered(FilterDriver& filter, const devhost::FrameTraits& traits) {
  const devhost::Frame output = filter.process(devhost::make_frame(traits));
  EXPECT_EQ(filter.last_error(), kNoError);
  return output ? devhost::inspect(output.get()).pixels : Pixels{};
}

const Pixels kCleared = {5749, 0, 5751, 0};

TEST(HardwareD2DCorrectionFilter, ClearsTheDepthOfEmptyDisparities) {
  FilterDriver filter("HardwareD2DCorrectionFilter");
  EXPECT_EQ(filter.schema(), "");
  EXPECT_EQ(filter.update({"any", "thing"}), kNoError);
  EXPECT_EQ(filtered(filter, corrected(8)), kCleared);
  const devhost::Frame set = filter.process(devhost::make_frame_set(devhost::make_frame(corrected(8))));
  ASSERT_TRUE(set);
  EXPECT_EQ(devhost::inspect(devhost::depth_frame_of(set.get()).get()).pixels, kCleared);
}

TEST(HardwareD2DCorrectionFilter, CopiesFramesThatHaveNothingToCorrect) {
  FilterDriver filter("HardwareD2DCorrectionFilter");
  devhost::FrameTraits traits = corrected(8);
  traits.pixel_type = ZV_PIXEL_TYPE_DISPARITY;
  EXPECT_EQ(filtered(filter, traits), traits.pixels);
  EXPECT_EQ(filtered(filter, corrected(0)), traits.pixels);
  traits = corrected(8);
  traits.metadata.clear();
  EXPECT_EQ(filtered(filter, traits), traits.pixels);
  EXPECT_EQ(filtered(filter, corrected(8)), kCleared);
}

TEST(HardwareD2DCorrectionFilter, TruncatesTheScaledPixelAndRoundsTheDepth) {
  FilterDriver filter("HardwareD2DCorrectionFilter");
  devhost::FrameTraits traits = corrected(8, {57499, 57500, 57509, 57510});
  traits.value_scale = 0.1f;
  Pixels expected = traits.pixels;
  for (std::uint16_t& p : expected) {
    if (static_cast<int>(0.1f * static_cast<float>(p)) == 5750) p = 0;
  }
  EXPECT_EQ(filtered(filter, traits), expected);
  EXPECT_EQ(expected[2], 0);
  traits = corrected(2, {1000, 1001, 1000});
  traits.disparity.fx = 2001;
  traits.disparity.baseline = 1;
  traits.format = 3;  // a new profile
  EXPECT_EQ(filtered(filter, traits), (Pixels{1000, 0, 1000})) << "1000.5 rounds away from zero";
}

TEST(HardwareD2DCorrectionFilter, KeepsTheDepthUnderANewProfileUntilTheCorrectionChanges) {
  FilterDriver filter("HardwareD2DCorrectionFilter");
  EXPECT_EQ(filtered(filter, corrected(8)), kCleared);
  devhost::FrameTraits traits = corrected(8);
  traits.format = 1;
  traits.disparity.fx = 919.84;
  EXPECT_EQ(filtered(filter, traits), kCleared);
  traits.metadata[32] = 0;
  EXPECT_EQ(filtered(filter, traits), traits.pixels);
  traits.metadata[32] = 8;
  EXPECT_EQ(filtered(filter, traits), (Pixels{0, 5750, 5751, 0}));
}

TEST(HardwareD2DCorrectionFilter, AFrameOfAnotherSizeBringsItsOwnProfile) {
  FilterDriver filter("HardwareD2DCorrectionFilter");
  for (const auto& [width, height] : {std::pair{4u, 1u}, {8u, 1u}, {8u, 2u}}) {
    const std::size_t area = std::size_t{width} * height;
    devhost::FrameTraits traits = corrected(std::int64_t{width} * height, Pixels(area, 5750));
    traits.width = width;
    traits.height = height;
    traits.disparity.fx = 115.0 * width;
    traits.disparity.baseline = 50.0f * static_cast<float>(height);
    EXPECT_EQ(filtered(filter, traits), Pixels(area)) << width << " x " << height;
  }
}

TEST(HardwareD2DCorrectionFilter, ResetForgetsEverythingAndPrintsIt) {
  HardwareD2DCorrectionFilter filter;
  const devhost::LiveObjects before = devhost::live_objects();
  const devhost::Frame frame = devhost::make_frame(corrected(8));
  devhost::Frame(filter.filter_process(frame.get(), nullptr));
  EXPECT_EQ(FilterDriver::output_of([&] { filter.print_key_params(); }),
            "disp_offset: 8\ninvalid_depth: 5750\nfb: 46000\n");
  filter.reset_filter(nullptr);
  EXPECT_EQ(devhost::live_objects().profiles, before.profiles + 1) << "the frame's own";
  EXPECT_EQ(FilterDriver::output_of([&] { filter.print_key_params(); }),
            "disp_offset: 0\ninvalid_depth: 0\nfb: 0\n");
}

}  // namespace
}  // namespace filterprocessor
