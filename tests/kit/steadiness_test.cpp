// Flicker and noise of what is at rest.
#include "kit/measure/steadiness.h"

#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "kit/frame/frame_attributes.h"

namespace kit {
namespace {

constexpr std::uint32_t kSide = 40;

/// Noise of so many millimetres in tenths, halved after the chain; rows 0 to 9 drift, 10 to 14 jump once, 15 to 19 are mostly
/// invalid, and the rest, half of all, is at rest.
Steadiness measured(std::size_t frames, double noise, bool crop = false) {
  std::mt19937 random(7);
  std::normal_distribution<double> normal(0, 10 * noise);
  FrameAttributes tenths;
  tenths.value_scale = 0.1f;
  Steadiness steadiness;
  for (std::size_t t = 0; t < frames; ++t) {
    Image before = make_image(kSide, kSide), after = before;
    for (std::size_t i = 0; i < before.pixels.size(); ++i) {
      const std::size_t y = i / kSide;
      double depth = 20000;
      if (y < 10) depth += 40 * noise * static_cast<double>(t);
      if (y >= 10 && y < 15 && t == 5) depth += 3000;
      const double error = normal(random);
      before.pixels[i] = static_cast<std::uint16_t>(std::lround(depth + error));
      after.pixels[i] = static_cast<std::uint16_t>(std::lround(depth + error / 2));
      if (y >= 15 && y < 20 && t % 2 == 0) before.pixels[i] = 0;
      if (y == 39 && t % 2 == 0) after.pixels[i] = 0;
    }
    if (crop) after = make_image(1, 1);
    steadiness.add(describe_frame(before, tenths), describe_frame(after, tenths));
  }
  steadiness.finish();
  return steadiness;
}

TEST(Steadiness, MeasuresTheNoiseOfWhatIsAtRest) {
  const Steadiness steadiness = measured(32, 4);
  const SteadinessSummary &before = steadiness.before(), &after = steadiness.after();
  EXPECT_NEAR(before.used.value(), 0.5, 0.06);
  EXPECT_NEAR(before.noise.value(), 4, 0.5);
  EXPECT_NEAR(before.flicker.value(), 4 * std::sqrt(2) * 0.6745, 0.3);
  EXPECT_NEAR(after.noise.value(), before.noise.value() / 2, 0.2);
  EXPECT_NEAR(after.flicker.value(), before.flicker.value() / 2, 0.2);
  EXPECT_NEAR(after.used.value(), before.used.value() - 1.0 / kSide, 0.01);
}

TEST(Steadiness, KnowsNothingOfFewFramesAndOtherSizes) {
  EXPECT_FALSE(measured(3, 4).before().used);
  EXPECT_TRUE(measured(4, 4).before().used);
  EXPECT_TRUE(measured(16, 4, true).before().flicker);
  EXPECT_FALSE(measured(16, 4, true).after().used);
  // What is still to the last bit is at rest.
  EXPECT_GT(measured(16, 0).before().used.value(), 0.5);
  EXPECT_EQ(measured(16, 0).before().flicker, 0);
}

}  // namespace
}  // namespace kit
