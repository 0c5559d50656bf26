#include "support/filter_driver.h"

namespace filterprocessor {
namespace {

constexpr const char* kName = "HardwareD2DCorrectionFilter";

/// fx times baseline is 46000, so a correction of 8 gives 5750.
devhost::FrameTraits corrected(std::int64_t correction, Pixels pixels = {5749, 5750, 5751, 0}) {
  const std::uint32_t height = pixels.size() % 2 == 0 ? 2 : 1;
  devhost::FrameTraits traits = frame_of(std::move(pixels), height);
  traits.metadata[32] = correction;
  traits.disparity.fx = 920;
  traits.disparity.baseline = 50;
  return traits;
}

const Pixels kCleared = {5749, 0, 5751, 0};

TEST(HardwareD2DCorrectionFilter, ClearsTheDepthOfEmptyDisparitiesAndCopiesOtherFrames) {
  FilterDriver filter(kName);
  EXPECT_EQ(filter.schema(), "");
  EXPECT_EQ(filter.filtered(corrected(8)), kCleared);
  devhost::FrameTraits disparity = corrected(8);
  disparity.pixel_type = ZV_PIXEL_TYPE_DISPARITY;
  devhost::FrameTraits uncorrected = corrected(8);
  uncorrected.metadata.clear();
  for (const devhost::FrameTraits& traits : {disparity, corrected(0), uncorrected}) {
    EXPECT_EQ(filter.filtered(traits), traits.pixels);
  }
  EXPECT_EQ(filter.filtered(corrected(8)), kCleared);
}

TEST(HardwareD2DCorrectionFilter, TruncatesTheScaledPixelAndRoundsTheDepth) {
  FilterDriver filter(kName);
  devhost::FrameTraits traits = corrected(8, {57499, 57501, 57509, 57510});
  traits.value_scale = 0.1f;
  EXPECT_EQ(filter.filtered(traits), (Pixels{57499, 0, 0, 57510}));
  traits = corrected(2, {1000, 1001, 1000});
  traits.disparity.fx = 2001;
  traits.disparity.baseline = 1;
  EXPECT_EQ(filter.filtered(traits), (Pixels{1000, 0, 1000})) << "1000.5 rounds away from zero";
}

TEST(HardwareD2DCorrectionFilter, KeepsTheDepthUnderANewProfileUntilTheCorrectionChanges) {
  for (const bool missing : {false, true}) {
    FilterDriver filter(kName);
    EXPECT_EQ(filter.filtered(corrected(8)), kCleared);
    devhost::FrameTraits traits = corrected(8);
    traits.format = 1;
    traits.disparity.fx = 919.84;
    EXPECT_EQ(filter.filtered(traits), kCleared);
    traits.metadata[32] = 0;
    if (missing) traits.metadata.clear();
    EXPECT_EQ(filter.filtered(traits), traits.pixels);
    traits.metadata[32] = 8;
    EXPECT_EQ(filter.filtered(traits), (Pixels{0, 5750, 5751, 0}));
  }
}

TEST(HardwareD2DCorrectionFilter, ResetForgetsEverything) {
  FilterDriver filter(kName);
  devhost::FrameTraits traits = corrected(8);
  EXPECT_EQ(filter.filtered(traits), kCleared);
  traits.disparity.fx = 919.84;
  EXPECT_EQ(filter.filtered(traits), kCleared) << "the profile is that of before";
  filter.reset();
  EXPECT_EQ(devhost::live_objects().profiles, 0);
  EXPECT_EQ(filter.filtered(traits), (Pixels{0, 5750, 5751, 0}));
}

}  // namespace
}  // namespace filterprocessor
