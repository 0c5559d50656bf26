#include "filterprocessor/spatial.h"

#include <cmath>
#include <limits>
#include <ostream>

#include "kernels/spatial/spatial_plan.h"
#include "support/levels.h"
#include "support/random_image.h"

namespace filterprocessor {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

struct Image {
  std::size_t width, height;
  Pixels pixels;
};

struct SpatialLevel : LevelTest {
  enum class Passes { horizontal, vertical, both };

  static void run(const KernelSet& set, Passes passes, Image& image,
                  const SpatialParameters& parameters) {
    const SpatialKernels& kernels = set.spatial;
    const auto kernel = passes == Passes::both       ? kernels.both
                        : passes == Passes::vertical ? kernels.vertical
                                                     : kernels.horizontal;
    kernel(image.pixels.data(), image.width, image.height, parameters);
  }
  /// One iteration on every eight equal rows; their values afterwards.
  Pixels across(const Pixels& row, std::uint16_t threshold, float alpha, std::uint8_t radius) const {
    Image image = {row.size(), 8, {}};
    for (int y = 0; y < 8; ++y) image.pixels.insert(image.pixels.end(), row.begin(), row.end());
    run(kernels(), Passes::horizontal, image, {{&threshold, 1, 0}, alpha, radius});
    const auto width = static_cast<std::ptrdiff_t>(row.size());
    for (int y = 1; y < 8; ++y) {
      EXPECT_TRUE(std::equal(image.pixels.begin(), image.pixels.begin() + width,
                             image.pixels.begin() + y * width));
    }
    return Pixels(image.pixels.begin(), image.pixels.begin() + width);
  }
  /// The same for eight equal columns and the vertical passes.
  Pixels along(const Pixels& column, std::uint16_t threshold, float alpha) const {
    Image image = {8, column.size(), {}};
    for (const auto value : column) image.pixels.insert(image.pixels.end(), 8, value);
    run(kernels(), Passes::vertical, image, {{&threshold, 1, 0}, alpha, 0});
    Pixels result;
    for (std::size_t y = 0; y < column.size(); ++y) {
      result.push_back(image.pixels[8 * y]);
      EXPECT_EQ(Pixels(image.pixels.begin() + static_cast<std::ptrdiff_t>(8 * y),
                       image.pixels.begin() + static_cast<std::ptrdiff_t>(8 * y + 8)),
                Pixels(8, result.back()));
    }
    return result;
  }
  void expect_plain(Image image, const SpatialParameters& parameters, const std::string& what) const {
    for (const Passes passes : {Passes::horizontal, Passes::vertical, Passes::both}) {
      Image expected = image;
      Image actual = image;
      run(plain(), passes, expected, parameters);
      run(kernels(), passes, actual, parameters);
      ASSERT_EQ(actual.pixels, expected.pixels)
          << what << ": " << image.width << " x " << image.height << ", passes "
          << static_cast<int>(passes) << ", alpha " << parameters.alpha << ", radius "
          << int{parameters.radius} << ", " << parameters.thresholds.size << " entries, shift "
          << parameters.thresholds.shift;
    }
  }
};
FILTERPROCESSOR_EVERY_LEVEL(SpatialLevel);

class SpatialVectors : public SpatialLevel {};
FILTERPROCESSOR_VECTOR_LEVELS(SpatialVectors);

TEST_P(SpatialLevel, FillsHolesFromBothSidesUpToTheRadius) {
  const Pixels row = {100, 0, 0, 0, 0, 100};
  EXPECT_EQ(across(row, 0, 0.5f, 3), Pixels(6, 100));
  EXPECT_EQ(across(row, 0, 0.5f, 2), (Pixels{100, 100, 0, 0, 100, 100}));
  EXPECT_EQ(across(row, 0, 0.5f, 1), row);
  EXPECT_EQ(across(row, 0, 0.5f, 0), row);
  EXPECT_EQ(across(Pixels(19, 0), 50, 0.5f, 255), Pixels(19, 0));
  // A valid pixel after a hole that stayed open does not reset the counter, so 200 fills neither side;
  // two valid pixels in a row do.
  EXPECT_EQ(across({100, 0, 0, 200, 0, 0, 300, 310, 0}, 0, 0.5f, 2),
            (Pixels{100, 100, 0, 200, 0, 300, 300, 310, 0}));
}

TEST_P(SpatialLevel, HorizontalThresholdsAreInclusiveAndVerticalOnesExclusive) {
  // To the right the middle becomes 104, to the left 106.
  EXPECT_EQ(across({100, 108, 108}, 8, 0.5f, 0), (Pixels{103, 106, 108}));
  EXPECT_EQ(across({100, 109, 109}, 8, 0.5f, 0), (Pixels{100, 109, 109}));
  EXPECT_EQ(along({100, 108}, 8, 0.5f), (Pixels{100, 108}));
  EXPECT_EQ(along({100, 108}, 9, 0.5f), (Pixels{102, 104}));
  EXPECT_EQ(along({100, 108, 0, 120}, 9, 0.5f), (Pixels{102, 104, 0, 120}));
}

TEST_P(SpatialLevel, LeavesRowsAndColumnsOutsideGroupsOfEight) {
  const std::uint16_t threshold = 1000;
  for (const std::size_t height : {7u, 12u, 35u}) {
    for (const std::size_t width : {7u, 12u, 41u}) {
      Random random(7);
      const Image image = {width, height, random.pixels(width * height, 3000, 300, 9)};
      Image horizontal = image;
      run(kernels(), Passes::horizontal, horizontal, {{&threshold, 1, 0}, 0.5f, 3});
      const auto rows = static_cast<std::ptrdiff_t>(height / 8 * 8 * width);
      EXPECT_TRUE(
          std::equal(image.pixels.begin() + rows, image.pixels.end(), horizontal.pixels.begin() + rows));
      EXPECT_EQ(rows == 0, horizontal.pixels == image.pixels);

      Image vertical = image;
      run(kernels(), Passes::vertical, vertical, {{&threshold, 1, 0}, 0.5f, 3});
      bool last_rows_changed = false;
      for (std::size_t i = 0; i < image.pixels.size(); ++i) {
        if (i % width >= width / 8 * 8) {
          EXPECT_EQ(vertical.pixels[i], image.pixels[i]);
        }
        last_rows_changed |= i / width + 1 == height && vertical.pixels[i] != image.pixels[i];
      }
      EXPECT_EQ(last_rows_changed, width >= 8);
    }
  }
}

TEST_P(SpatialLevel, LooksThresholdsUpByTheUnfilteredPixel) {
  const std::uint16_t table[] = {0, 50, 5};
  const auto blended = [&](std::uint16_t pixel, std::uint16_t neighbour, unsigned size, unsigned shift) {
    Image image = {2, 8, {}};
    for (int y = 0; y < 8; ++y) image.pixels.insert(image.pixels.end(), {pixel, neighbour});
    run(kernels(), Passes::horizontal, image, {{size == 0 ? nullptr : table, size, shift}, 0.0f, 0});
    return image.pixels[0] != pixel;
  };
  EXPECT_FALSE(blended(100, 105, 3, 8));
  EXPECT_TRUE(blended(300, 350, 3, 8));
  EXPECT_FALSE(blended(300, 351, 3, 8));
  EXPECT_TRUE(blended(5000, 5005, 3, 8)) << "past the end the last entry serves";
  EXPECT_FALSE(blended(5000, 5006, 3, 8));
  EXPECT_FALSE(blended(256, 300, 3, 0)) << "index 256 is entry 0";
  EXPECT_TRUE(blended(257, 300, 3, 0)) << "index 257 is entry 1";
  EXPECT_FALSE(blended(30000, 30040, 2, 16)) << "a shift of 16 and more selects entry 0";
  EXPECT_FALSE(blended(30000, 30040, 2, 255));
  EXPECT_FALSE(blended(300, 301, 0, 8)) << "without a table all thresholds are 0";
}

#if !defined(__aarch64__)
TEST_P(SpatialLevel, BlendRoundsToNearestWithTiesToEven) {
  EXPECT_EQ(across({100, 103}, 9, 0.5f, 0)[0], 102) << "101.5";
  EXPECT_EQ(across({101, 104}, 9, 0.5f, 0)[0], 102) << "102.5";
  EXPECT_EQ(across({100, 102}, 9, 0.25f, 0)[0], 102) << "101.5";
  EXPECT_EQ(across({100, 110}, 10, 1.0f, 0)[0], 100);
  EXPECT_EQ(across({100, 110}, 10, 0.0f, 0)[0], 110);
  EXPECT_EQ(across({100, 110}, 10, 0.9f, 0)[0], 101);
}

TEST_P(SpatialLevel, ThresholdsAndPixelsAreSignedNumbers) {
  EXPECT_EQ(across({40000, 40001}, 9, 0.5f, 3), (Pixels{40000, 40001})) << "both invalid";
  EXPECT_EQ(across({40000, 100}, 9, 0.5f, 2), (Pixels{100, 100})) << "invalid, so filled";
  EXPECT_EQ(across({1, 65535}, 9, 0.5f, 0), (Pixels{1, 65535}))
      << "a valid and an invalid pixel meet in a wrap";
  EXPECT_EQ(across({1, 32767}, 32766, 0.5f, 0)[0], 16384);
  EXPECT_EQ(across({100, 101}, 32767, 0.5f, 0)[0], 100) << "32767 + 1 is negative";
  EXPECT_EQ(across({100, 101}, 65535, 0.5f, 0)[0], 100) << "65535 + 1 is 0";
  EXPECT_EQ(along({100, 102}, 32767, 0.5f), (Pixels{100, 101})) << "inside without the 1";
  EXPECT_EQ(along({100, 102}, 40000, 0.5f), (Pixels{100, 102}));
}

TEST_P(SpatialVectors, EveryAlphaBlendsExactly) {
  // All pairs of a neighbour and a distance for alphas near and far from ties, whatever way the level
  // takes.
  Random random(3);
  for (int round = 0; round < 40; ++round) {
    const float alpha =
        round < 30 ? static_cast<float>(random.integer(10, 100)) * 0.01f : random.real(0.0f, 1.0f);
    const std::uint16_t threshold = random.pick<std::uint16_t>({1, 7, 60, 190, 1500});
    Image image = {512, 64, Pixels(512 * 64)};
    for (std::size_t i = 0; i < image.pixels.size(); i += 2) {
      const int distance = random.integer(-threshold, threshold);
      image.pixels[i] = static_cast<std::uint16_t>(random.integer(1600, 31000));
      image.pixels[i + 1] = static_cast<std::uint16_t>(image.pixels[i] + distance);
    }
    expect_plain(image, {{&threshold, 1, 16}, alpha, 1}, "pairs");
  }
}

TEST(SpatialPlan, FixedPointServesOnlyWhereNoDistanceIsNearATie) {
  EXPECT_EQ(spatial_blend(0.5f, 200).kind, SpatialBlend::Kind::half);
  EXPECT_EQ(spatial_blend(0.6f, 200).kind, SpatialBlend::Kind::fixed_point);
  EXPECT_EQ(spatial_blend(0.3f, 5).kind, SpatialBlend::Kind::fixed_point);
  EXPECT_EQ(spatial_blend(0.3f, 6).kind, SpatialBlend::Kind::floating) << "0.3 x 5 is a half";
  EXPECT_EQ(spatial_blend(0.25f, 200).kind, SpatialBlend::Kind::floating);
  EXPECT_EQ(spatial_blend(1.0f, 32767).kind, SpatialBlend::Kind::floating)
      << "too many distances to check";
}
#else
TEST_P(SpatialLevel, BlendIsTheWrappedMeanOfUnsignedPixels) {
  EXPECT_EQ(across({100, 103}, 9, 0.9f, 0)[0], 101);
  EXPECT_EQ(across({100, 103}, 9, kNan, 0)[0], 101);
  EXPECT_EQ(across({40000, 40003}, 9, 0.5f, 0)[0], 7233) << "80003 - 65536, halved";
  EXPECT_EQ(across({40000, 40000}, 9, 0.5f, 0)[0], 40000) << "equal pixels are not blended";
  EXPECT_EQ(across({1, 65535}, 9, 0.5f, 0)[0], 1) << "distances do not wrap";
  EXPECT_EQ(across({1, 65535}, 65534, 0.5f, 0)[0], 0);
  EXPECT_EQ(across({100, 101}, 65535, 0.5f, 0)[0], 100) << "65535 + 1 is 0";
}
#endif

TEST_P(SpatialVectors, EqualsThePlainFormOnAnyImage) {
  Random random(4);
  for (int round = 0; round < 3000; ++round) {
    const auto width = static_cast<std::size_t>(random.integer(1, random.one_in(20) ? 600 : 70));
    const auto height = static_cast<std::size_t>(random.integer(1, random.one_in(20) ? 200 : 70));
    const int centre = random.pick({20, 700, 3000, 32767, 50000});
    const int spread = random.pick({2, 12, 90, 600, 40000});
    const Image image = {width, height,
                         random.pixels(width * height, centre, spread, random.pick({2, 12, 100}))};
    Pixels table(static_cast<std::size_t>(random.pick({0, 1, 2, 7, 7, 7, 8, 9, 32, 33, 255})));
    const int largest = random.pick({3, 40, 300, 4000, 65535});
    for (auto& entry : table) entry = static_cast<std::uint16_t>(random.integer(0, largest));
    const unsigned shift =
        static_cast<unsigned>(random.one_in(2) ? random.integer(9, 13) : random.integer(0, 31));
    const float alpha =
        random.pick({0.5f, 0.5f, 0.6f, 0.3f, 0.25f, 0.0f, 1.0f, 1e-40f, random.real(0.0f, 1.0f)});
    const auto radius = static_cast<std::uint8_t>(random.pick({0, 1, 2, 3, 8, 255}));
    expect_plain(image, {{table.data(), static_cast<unsigned>(table.size()), shift}, alpha, radius},
                 "random");
    if (HasFatalFailure()) return;
  }
}

TEST_P(SpatialVectors, EqualsThePlainFormOnEitherSideOfTheWidthThatFitsTheStack) {
  Random random(7);
  const std::uint16_t table[] = {3, 15, 35, 62};
  for (const std::size_t width : {1279u, 1280u, 1281u, 2600u}) {
    const Image image = {width, 77, random.pixels(width * 77, 900, 60, 9)};
    for (const std::uint8_t radius : {std::uint8_t{1}, std::uint8_t{3}}) {
      expect_plain(image, {{table, 4, 8}, 0.5f, radius}, std::to_string(width) + " columns");
      if (HasFatalFailure()) return;
    }
  }
}

/// A filter of ten by sixteen pixels through the exported functions.
struct Spatial : testing::Test {
  static constexpr std::uint16_t table[] = {30, 30};
  const Pixels image = Random(6).pixels(10 * 16, 900, 20, 11);
  Pixels pixels = image;

  int fixed(int magnitude, int horizontal, int vertical, float alpha, float disp_diff = 30) {
    return depth_api_spatial_filter(pixels.data(), 10, 16, nullptr, 0, 0, magnitude, 3, byte(horizontal),
                                    byte(vertical), alpha, disp_diff);
  }
  int by_table(int magnitude, int horizontal, int vertical, float alpha) {
    return depth_api_spatial_filter(pixels.data(), 10, 16, table, 9, 2, magnitude, 3, byte(horizontal),
                                    byte(vertical), alpha, 0);
  }
  int origin(int magnitude, int horizontal, int vertical, float alpha) {
    return depth_api_spatial_filter_origin(pixels.data(), 10, 16, magnitude, 3, byte(horizontal),
                                           byte(vertical), alpha, 30);
  }
  int origin_table(int magnitude, int horizontal, int vertical, float alpha) {
    return depth_api_spatial_filter_origin_lut(pixels.data(), 10, 16, table, 9, 2, magnitude, 3,
                                               byte(horizontal), byte(vertical), alpha);
  }
  static std::uint8_t byte(int value) { return static_cast<std::uint8_t>(value); }
  /// The image after `steps` calls of `call`, which start from the original.
  template <typename Call>
  Pixels after(int steps, Call call) {
    pixels = image;
    for (int i = 0; i < steps; ++i) EXPECT_EQ(call(), 0);
    return pixels;
  }
};

TEST_F(Spatial, RefusesArgumentsOutOfRangeAndLeavesTheImage) {
  const auto refused = [&](auto function) {
    EXPECT_EQ((this->*function)(1, 0, 0, 0.5f), -1);
    EXPECT_EQ((this->*function)(1, 1, 2, 0.5f), -1);
    EXPECT_EQ((this->*function)(1, 255, 1, 0.5f), -1);
    EXPECT_EQ((this->*function)(1, 1, 1, 1.001f), -1);
    EXPECT_EQ((this->*function)(1, 1, 1, -0.001f), -1);
    EXPECT_EQ((this->*function)(0, 1, 1, 0.5f), -1);
    EXPECT_EQ((this->*function)(-5, 1, 1, 0.5f), -1);
    EXPECT_EQ(pixels, image);
    EXPECT_EQ((this->*function)(1, 1, 1, kNan), 0);
    pixels = image;
    EXPECT_EQ((this->*function)(1, 1, 1, -0.0f), 0);
    EXPECT_NE(pixels, image);
    pixels = image;
  };
  refused(&Spatial::by_table);
  refused(&Spatial::origin);
  refused(&Spatial::origin_table);
  EXPECT_EQ(fixed(1, 1, 3, 0.5f), -1);
  EXPECT_EQ(depth_api_spatial_filter(nullptr, 10, 16, table, 9, 2, 1, 3, 1, 1, 0.5f, 30), -1);
  EXPECT_EQ(depth_api_spatial_filter_origin(nullptr, 10, 16, 1, 3, 1, 1, 0.5f, 30), -1);
  EXPECT_EQ(depth_api_spatial_filter_origin_lut(nullptr, 10, 16, table, 9, 2, 1, 3, 1, 1, 0.5f), -1);
  EXPECT_EQ(pixels, image);
}

TEST_F(Spatial, OriginIteratesOnceAndTheOthersAsOftenAsTold) {
  const Pixels once = after(1, [&] { return fixed(1, 1, 1, 0.5f); });
  const Pixels thrice = after(3, [&] { return fixed(1, 1, 1, 0.5f); });
  ASSERT_NE(once, thrice);
  EXPECT_EQ(after(1, [&] { return origin(5, 1, 1, 0.5f); }), once);
  EXPECT_EQ(after(1, [&] { return fixed(3, 1, 1, 0.5f); }), thrice);
  EXPECT_EQ(after(1, [&] { return by_table(3, 1, 1, 0.5f); }), thrice);
  EXPECT_EQ(after(1, [&] { return origin_table(3, 1, 1, 0.5f); }), thrice);
}

TEST_F(Spatial, FlagsChooseThePasses) {
  const auto horizontal = [&] { return fixed(1, 1, 0, 0.5f); };
  const auto vertical = [&] { return fixed(1, 0, 1, 0.5f); };
  const Pixels only_horizontal = after(1, horizontal);
  const Pixels only_vertical = after(1, vertical);
  EXPECT_NE(only_horizontal, only_vertical);
  EXPECT_EQ(after(1, [&] { return origin(1, 1, 0, 0.5f); }), only_horizontal);
  EXPECT_EQ(after(1, [&] { return origin_table(1, 1, 0, 0.5f); }), only_horizontal);
  EXPECT_EQ(after(1, [&] { return origin(1, 0, 1, 0.5f); }), only_vertical);
  EXPECT_EQ(after(1, [&] { return by_table(1, 0, 1, 0.5f); }), only_vertical);
  EXPECT_EQ(after(1, [&] { return horizontal() | vertical(); }),
            after(1, [&] { return fixed(1, 1, 1, 0.5f); }));
}

TEST_F(Spatial, FixedThresholdsAreTruncatedToSixteenBits) {
  const auto at = [&](float disp_diff) {
    return after(1, [&] { return fixed(1, 1, 1, 0.5f, disp_diff); });
  };
  const Pixels smooth = at(30);
  EXPECT_EQ(at(30.99f), smooth);
  EXPECT_EQ(at(65536.0f + 30), smooth);
  const Pixels filled = at(0);
  EXPECT_NE(filled, smooth);
  EXPECT_EQ(at(-0.9f), filled);
  EXPECT_EQ(at(kNan), filled);
  if (!kUnsignedPixels) {
    EXPECT_EQ(at(-7), filled);
    EXPECT_EQ(at(1e20f), filled) << "2^31 - 1 ends in 65535";
  }
}

TEST(FastAbs, IsTheAbsoluteValue) {
  EXPECT_EQ(fast_abs(5), 5);
  EXPECT_EQ(fast_abs(-5), 5);
  EXPECT_EQ(fast_abs(0), 0);
  EXPECT_EQ(fast_abs(std::numeric_limits<std::int32_t>::min()), std::numeric_limits<std::int32_t>::min());
}

}  // namespace
}  // namespace filterprocessor
