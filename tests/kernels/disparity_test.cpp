#include <cmath>
#include <limits>

#include "filters/depth_converter.h"
#include "support/levels.h"
#include "support/random_image.h"

namespace filterprocessor {
namespace {

class DisparityLevel : public LevelTest {};
class DisparityVectors : public LevelTest {};

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

double any_of(std::mt19937& random, std::initializer_list<double> values) {
  return values.begin()[random() % values.size()];
}

DepthLimits any_limits(std::mt19937& random) {
  return {any_of(random, {0, 100, 3000.5}), any_of(random, {10000, 65535, 131070, 700.25}),
          any_of(random, {65536, 65536, 4096})};
}

StereoRule any_stereo(std::mt19937& random) {
  return {.layout = random() % 2 ? CodeLayout::linear : CodeLayout::inverted,
          .scale = std::ldexp(1.0, static_cast<int>(random() % 12) - 2),
          .focal_baseline = any_of(random, {29680, 29680.4, 1e6, 10, -3000, 0, kNaN, kInfinity, 1e300}),
          .unit = any_of(random, {1, 0.5, 10, 0.001, 1, kNaN}),
          .disparity_offset = any_of(random, {0, 0, 0.37, -5, 300, kNaN}),
          .metadata_offset = any_of(random, {0, 0, 8, -8}),
          .min_disparity = any_of(random, {0, 64, 96.5, kNaN}),
          .disparity_end = any_of(random, {256, 1024}),
          .invalid_disparity = any_of(random, {0, 20, -1, 255}),
          .limits = any_limits(random)};
}

MonoRule any_mono(std::mt19937& random) {
  return {.layout = static_cast<CodeLayout>(random() % 3),
          .scale = std::ldexp(1.0, static_cast<int>(random() % 12) - 2),
          .numerator = any_of(random, {1000, 1000.3, 500, -1000, 0, kNaN, kInfinity}),
          .slope = any_of(random, {1000.0 / 29680, 0.02, -0.02, 0, kInfinity, kNaN}),
          .disparity_offset = any_of(random, {0, 0, -29.68, 0.25, kNaN}),
          .limits = any_limits(random)};
}

TEST_P(DisparityVectors, TablesEqualThePlainFormInEveryEntry) {
  std::mt19937 random(3);
  for (const std::size_t size : {std::size_t{1}, std::size_t{2}, std::size_t{7}, std::size_t{1024},
                                 std::size_t{8192}, std::size_t{16384}, kMaxDepthTable}) {
    for (int n = 0; n < 40; ++n) {
      const StereoRule stereo = any_stereo(random);
      const MonoRule mono = any_mono(random);
      Pixels expected(size);
      Pixels actual(size);
      plain().depth_table.stereo(stereo, expected.data(), size);
      kernels().depth_table.stereo(stereo, actual.data(), size);
      ASSERT_EQ(actual, expected) << "stereo, size " << size << ", case " << n;
      expected.assign(size, 0);
      actual.assign(size, 0);
      plain().depth_table.mono(mono, expected.data(), size);
      kernels().depth_table.mono(mono, actual.data(), size);
      ASSERT_EQ(actual, expected) << "mono, size " << size << ", case " << n;
    }
  }
}

TEST_P(DisparityLevel, ConversionEqualsTheTableForEveryPixelValue) {
  std::mt19937 random(4);
  Pixels codes(65536 + 5);
  for (std::size_t i = 0; i < codes.size(); ++i) codes[i] = static_cast<std::uint16_t>(i * 40503);
  Pixels depth(codes.size());
  int computing = 0;
  for (int n = 0; n < 120; ++n) {
    const std::size_t size = std::size_t{1} << (8 + random() % 9);
    const bool stereo = random() % 2 != 0;
    DepthConverter converter = stereo ? DepthConverter(any_stereo(random), size, kernels())
                                      : DepthConverter(any_mono(random), size, kernels());
    for (int use = 0; use < 5; ++use) {
      if (use == 3) converter = converter.with_first_entry_cleared();
      const auto entry = [&](std::size_t code) {
        return code < size ? int{converter.entries()[code]} : 0;
      };
      converter.convert(codes.data(), depth.data(), codes.size());
      for (std::size_t i = 0; i < codes.size(); ++i)
        ASSERT_EQ(depth[i], entry(codes[i])) << n << ", " << i;
      converter.convert_packed(codes.data(), depth.data(), codes.size());
      for (std::size_t i = 0; i < codes.size(); ++i) {
        ASSERT_EQ(depth[i], (entry(codes[i] >> 4) << 4 | (codes[i] & 15)) & 0xffff) << n << ", " << i;
      }
    }
    computing += converter.computes() + converter.computes_packed();
  }
  if (&kernels() != &plain()) {
    EXPECT_GT(computing, 10) << "the computing form is tried";
  }
}

TEST_P(DisparityVectors, CorrectionEqualsThePlainFormForEveryPixelValue) {
  Pixels every(65536 + 3);
  for (std::size_t i = 0; i < every.size(); ++i) every[i] = static_cast<std::uint16_t>(i);
  const float infinity = std::numeric_limits<float>::infinity();
  for (const float scale : {1.0f, 0.1f, 0.25f, 10.0f, 0.0f, -1.0f, -0.3f, 1e-9f, 1e30f, infinity,
                            -infinity, std::numeric_limits<float>::quiet_NaN()}) {
    for (const std::int32_t depth :
         {0, 1, -1, 5750, -5750, 65535, 65536, 600000, std::numeric_limits<std::int32_t>::max(),
          std::numeric_limits<std::int32_t>::min()}) {
      Pixels expected = every;
      Pixels actual = every;
      plain().correction.clear_depth(expected.data(), expected.size(), scale, depth);
      kernels().correction.clear_depth(actual.data(), actual.size(), scale, depth);
      ASSERT_EQ(actual, expected) << scale << ", " << depth;
    }
  }
}

FILTERPROCESSOR_EVERY_LEVEL(DisparityLevel);
FILTERPROCESSOR_VECTOR_LEVELS(DisparityVectors);

}  // namespace
}  // namespace filterprocessor
