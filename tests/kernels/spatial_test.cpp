#include "filterprocessor/spatial.h"

#include <limits>

#include "kernels/spatial/spatial_plan.h"
#include "scenes.h"
#include "support/levels.h"

namespace filterprocessor {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

/// The plain form's iteration on every eight equal rows; the values of the last one afterwards.
Pixels across(const Pixels& row, const ThresholdTable& thresholds, float alpha, std::uint8_t radius) {
  Pixels image;
  for (int y = 0; y < 8; ++y) image.insert(image.end(), row.begin(), row.end());
  plain::spatial.horizontal(image.data(), row.size(), 8, {thresholds, alpha, radius});
  return Pixels(image.end() - static_cast<std::ptrdiff_t>(row.size()), image.end());
}
Pixels across(const Pixels& row, std::uint16_t threshold, float alpha, std::uint8_t radius) {
  return across(row, {&threshold, 1, 0}, alpha, radius);
}
/// The same for eight equal columns and the vertical passes.
Pixels along(const Pixels& column, std::uint16_t threshold, float alpha) {
  Pixels image, result;
  for (const auto value : column) image.insert(image.end(), 8, value);
  plain::spatial.vertical(image.data(), 8, column.size(), {{&threshold, 1, 0}, alpha, 0});
  for (std::size_t i = 7; i < image.size(); i += 8) result.push_back(image[i]);
  return result;
}

TEST(Spatial, FillsHolesFromBothSidesUpToTheRadius) {
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

TEST(Spatial, HorizontalThresholdsAreInclusiveAndVerticalOnesExclusive) {
  // To the right the middle becomes 104, to the left 106.
  EXPECT_EQ(across({100, 108, 108}, 8, 0.5f, 0), (Pixels{103, 106, 108}));
  EXPECT_EQ(across({100, 109, 109}, 8, 0.5f, 0), (Pixels{100, 109, 109}));
  EXPECT_EQ(along({100, 108}, 8, 0.5f), (Pixels{100, 108}));
  EXPECT_EQ(along({100, 108}, 9, 0.5f), (Pixels{102, 104}));
  EXPECT_EQ(along({100, 108, 0, 120}, 9, 0.5f), (Pixels{102, 104, 0, 120}));
}

TEST(Spatial, LeavesRowsAndColumnsOutsideGroupsOfEight) {
  const std::uint16_t threshold = 1000;
  const std::size_t side = 20;
  Pixels image;
  for (int i = 0; i < 400; ++i)
    image.push_back(static_cast<std::uint16_t>(3000 + 100 * (i / 20 % 2 + i % 2)));
  Pixels by_row = image, by_column = image;
  plain::spatial.horizontal(by_row.data(), side, side, {{&threshold, 1, 0}, 0.4f, 3});
  plain::spatial.vertical(by_column.data(), side, side, {{&threshold, 1, 0}, 0.4f, 3});
  for (std::size_t i = 0; i < image.size(); ++i) {
    EXPECT_EQ(by_row[i] != image[i], i / side < 16 && i % side < 19) << i;
    EXPECT_EQ(by_column[i] != image[i], i % side < 16) << i;
  }
}

TEST(Spatial, LooksThresholdsUpByTheUnfilteredPixel) {
  const std::uint16_t table[] = {0, 50, 5};
  const auto blended = [&](std::uint16_t pixel, std::uint16_t neighbour, unsigned size, unsigned shift) {
    return across({pixel, neighbour}, {size == 0 ? nullptr : table, size, shift}, 0.0f, 0)[0] != pixel;
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
  const Pixels two = {1, 2};
  EXPECT_EQ((ThresholdTable{two.data(), 2, 15}).at(32768), 2) << "the highest bit alone";
}

#if !defined(__aarch64__)
TEST(Spatial, BlendRoundsToNearestWithTiesToEven) {
  EXPECT_EQ(across({100, 103}, 9, 0.5f, 0)[0], 102) << "101.5";
  EXPECT_EQ(across({101, 104}, 9, 0.5f, 0)[0], 102) << "102.5";
  EXPECT_EQ(across({100, 102}, 9, 0.25f, 0)[0], 102) << "101.5";
  EXPECT_EQ(across({100, 110}, 10, 1.0f, 0)[0], 100);
  EXPECT_EQ(across({100, 110}, 10, 0.0f, 0)[0], 110);
  EXPECT_EQ(across({100, 110}, 10, 0.9f, 0)[0], 101);
}

TEST(Spatial, ThresholdsAndPixelsAreSignedNumbers) {
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
TEST(Spatial, BlendIsTheWrappedMeanOfUnsignedPixels) {
  EXPECT_EQ(across({100, 103}, 9, 0.9f, 0)[0], 101);
  EXPECT_EQ(across({100, 103}, 9, kNan, 0)[0], 101);
  EXPECT_EQ(across({40000, 40003}, 9, 0.5f, 0)[0], 7233) << "80003 - 65536, halved";
  EXPECT_EQ(across({40000, 40000}, 9, 0.5f, 0)[0], 40000) << "equal pixels are not blended";
  EXPECT_EQ(across({1, 65535}, 9, 0.5f, 0)[0], 1) << "distances do not wrap";
  EXPECT_EQ(across({1, 65535}, 65534, 0.5f, 0)[0], 0);
  EXPECT_EQ(across({100, 101}, 65535, 0.5f, 0)[0], 100) << "65535 + 1 is 0";
}
#endif

// -- The exported functions, on ten by sixteen pixels

using Call = int (*)(std::uint16_t* data, int magnitude, std::uint8_t horizontal, std::uint8_t vertical,
                     float alpha);
constexpr std::uint16_t kTable[] = {30, 30};
constexpr Call kFixed = [](auto* data, int magnitude, auto horizontal, auto vertical, float alpha) {
  return depth_api_spatial_filter(data, 10, 16, nullptr, 0, 0, magnitude, 3, horizontal, vertical, alpha,
                                  30);
};
constexpr Call kByTable = [](auto* data, int magnitude, auto horizontal, auto vertical, float alpha) {
  return depth_api_spatial_filter(data, 10, 16, kTable, 9, 2, magnitude, 3, horizontal, vertical, alpha,
                                  0);
};
constexpr Call kOrigin = [](auto* data, int magnitude, auto horizontal, auto vertical, float alpha) {
  return depth_api_spatial_filter_origin(data, 10, 16, magnitude, 3, horizontal, vertical, alpha, 30);
};
constexpr Call kOriginByTable = [](auto* data, int magnitude, auto horizontal, auto vertical,
                                   float alpha) {
  return depth_api_spatial_filter_origin_lut(data, 10, 16, kTable, 9, 2, magnitude, 3, horizontal,
                                             vertical, alpha);
};

Pixels any_image() {
  Pixels image = bench::noise(10, 16, 880, 920, 6).pixels;
  for (std::size_t i = 0; i < image.size(); i += 7) image[i] = 0;
  return image;
}

Pixels after(Call call, int magnitude, std::uint8_t horizontal, std::uint8_t vertical,
             Pixels pixels = any_image()) {
  EXPECT_EQ(call(pixels.data(), magnitude, horizontal, vertical, 0.5f), 0);
  return pixels;
}

TEST(SpatialInterface, RefusesArgumentsOutOfRangeAndLeavesTheImage) {
  for (const Call call : {kFixed, kByTable, kOrigin, kOriginByTable}) {
    Pixels pixels = any_image();
    EXPECT_EQ(call(nullptr, 1, 1, 1, 0.5f), -1);
    EXPECT_EQ(call(pixels.data(), 1, 0, 0, 0.5f), -1);
    EXPECT_EQ(call(pixels.data(), 1, 1, 2, 0.5f), -1);
    EXPECT_EQ(call(pixels.data(), 1, 255, 1, 0.5f), -1);
    EXPECT_EQ(call(pixels.data(), 1, 1, 1, 1.001f), -1);
    EXPECT_EQ(call(pixels.data(), 1, 1, 1, -0.001f), -1);
    EXPECT_EQ(call(pixels.data(), 0, 1, 1, 0.5f), -1);
    EXPECT_EQ(call(pixels.data(), -5, 1, 1, 0.5f), -1);
    EXPECT_EQ(pixels, any_image());
    EXPECT_EQ(call(pixels.data(), 1, 1, 1, -0.0f), 0);
    EXPECT_NE(pixels, any_image());
    EXPECT_EQ(call(pixels.data(), 1, 1, 1, kNan), 0);
  }
}

TEST(SpatialInterface, FlagsChooseThePassesAndAllButOneOriginIterateAsOftenAsTold) {
  const Pixels horizontal = after(kFixed, 1, 1, 0);
  const Pixels vertical = after(kFixed, 1, 0, 1);
  const Pixels once = after(kFixed, 1, 0, 1, horizontal);
  const Pixels thrice = after(kFixed, 1, 1, 1, after(kFixed, 1, 1, 1, once));
  EXPECT_NE(horizontal, vertical);
  EXPECT_NE(once, thrice);
  for (const Call call : {kFixed, kByTable, kOrigin, kOriginByTable}) {
    EXPECT_EQ(after(call, 1, 1, 0), horizontal);
    EXPECT_EQ(after(call, 1, 0, 1), vertical);
    EXPECT_EQ(after(call, 3, 1, 1), call == kOrigin ? once : thrice);
  }
}

TEST(SpatialInterface, FixedThresholdsAreTruncatedToSixteenBits) {
  const auto at = [](float disp_diff) {
    Pixels pixels = any_image();
    depth_api_spatial_filter(pixels.data(), 10, 16, nullptr, 0, 0, 1, 3, 1, 1, 0.5f, disp_diff);
    return pixels;
  };
  const Pixels filled = at(0);
  EXPECT_NE(filled, at(30));
  EXPECT_EQ(at(30.99f), at(30));
  EXPECT_EQ(at(65536.0f + 30), at(30));
  EXPECT_EQ(at(-0.9f), filled);
  EXPECT_EQ(at(kNan), filled);
  if (!kUnsignedPixels) {
    EXPECT_EQ(at(-7), filled);
    EXPECT_EQ(at(1e20f), filled) << "2^31 - 1 ends in 65535";
  }
}

TEST(FastAbs, IsTheAbsoluteValue) {
  EXPECT_EQ(fast_abs(-5), 5);
  EXPECT_EQ(fast_abs(std::numeric_limits<std::int32_t>::min()), std::numeric_limits<std::int32_t>::min());
}

}  // namespace
}  // namespace filterprocessor
