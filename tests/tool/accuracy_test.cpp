#include "accuracy.h"

#include <gtest/gtest.h>

namespace zvfilter {
namespace {

FrameImage depth(Image image, float scale = 1, int pixel_type = ZV_PIXEL_TYPE_DEPTH) {
  FrameImage frame(std::move(image));
  frame.attributes.value_scale = scale;
  frame.attributes.pixel_type = pixel_type;
  return frame;
}

TEST(Distribution, TakesQuantilesByRank) {
  Distribution values;
  EXPECT_FALSE(values.quantile(0.5).has_value());
  for (int i = 100; i > 0; --i) values.add(i);
  EXPECT_EQ(values.quantile(0), 1);
  EXPECT_EQ(values.quantile(0.5), 50);
  EXPECT_EQ(values.quantile(0.95), 95);
  EXPECT_EQ(values.quantile(1), 100);
  for (int i = 0; i < 200; ++i) values.add(0.0625);
  EXPECT_EQ(values.quantile(0.5), 0.063);
  EXPECT_EQ(values.count(), 300u);
}

TEST(Accuracy, MeasuresValidPixelsWithATruth) {
  // Errors of 0, 5 (not above 5 %), 6 and 100; a hole; a pixel whose truth is unknown.
  const Image truth{6, 1, {100, 100, 100, 1000, 700, 0}};
  Accuracy accuracy;
  accuracy.add(depth({6, 1, {200, 210, 188, 1800, 0, 5}}, 0.5f), truth);
  EXPECT_DOUBLE_EQ(accuracy.coverage().value(), 5.0 / 6);
  EXPECT_EQ(accuracy.median(), 5);
  EXPECT_EQ(accuracy.percentile95(), 100);
  EXPECT_DOUBLE_EQ(accuracy.off().value(), 0.5);
  EXPECT_FALSE(accuracy.flicker().has_value());

  accuracy.add(depth({6, 1, {100, 100, 100, 1000, 0, 0}}), truth);  // of another scale, all true
  EXPECT_DOUBLE_EQ(accuracy.coverage().value(), 9.0 / 12);
  EXPECT_EQ(accuracy.median(), 0);
  EXPECT_DOUBLE_EQ(accuracy.off().value(), 0.25);
  EXPECT_EQ(accuracy.flicker(), 5);  // of 0, 5, 6 and 100
}

TEST(Accuracy, ReadsTheDepthOfPackedPixels) {
  FrameImage frame = depth({3, 1, {100 * 16 + 15, 7, 90 * 16}});  // the second is confidence alone
  frame.attributes.format = ZV_FORMAT_PACKED_CODE;
  Accuracy accuracy;
  accuracy.add(frame, {3, 1, {100, 100, 100}});
  EXPECT_DOUBLE_EQ(accuracy.coverage().value(), 2.0 / 3);
  EXPECT_EQ(accuracy.median(), 0);
  EXPECT_EQ(accuracy.percentile95(), 10);
}

TEST(Accuracy, SeesFlickerOnlyWhereThePixelIsStill) {
  Accuracy accuracy;
  accuracy.add(depth({5, 1, {100, 100, 0, 100, 100}}), {5, 1, {100, 100, 100, 0, 100}});
  accuracy.add(depth({5, 1, {107, 300, 100, 400, 0}}), {5, 1, {100, 101, 100, 0, 100}});
  EXPECT_EQ(accuracy.flicker(), 7);
  accuracy.add(depth({1, 1, {1}}), {1, 1, {1}});  // a sequence of two sizes
  EXPECT_EQ(accuracy.flicker(), 7);
}

TEST(Accuracy, KnowsNothingOfDisparityAndOfOtherSizes) {
  const auto expect_nothing = [](FrameImage frame) {
    const Image truth{2, 1, {5, 5}};
    Accuracy accuracy;
    accuracy.add(depth({2, 1, {5, 5}}), truth);
    accuracy.add(depth({2, 1, {5, 5}}), truth);
    EXPECT_TRUE(accuracy.flicker().has_value());
    accuracy.add(frame, truth);
    accuracy.add(depth({2, 1, {5, 5}}), truth);
    for (const auto& value : {accuracy.coverage(), accuracy.median(), accuracy.percentile95(),
                              accuracy.off(), accuracy.flicker()}) {
      EXPECT_FALSE(value.has_value());
    }
  };
  expect_nothing(depth({2, 1, {5, 5}}, 1, ZV_PIXEL_TYPE_DISPARITY));
  expect_nothing(depth({1, 2, {5, 5}}));

  Accuracy empty;  // valid pixels, and no truth for any
  empty.add(depth({1, 1, {3}}), {1, 1, {0}});
  EXPECT_EQ(empty.coverage(), 1);
  EXPECT_FALSE(empty.median().has_value());
  EXPECT_FALSE(empty.off().has_value());
}

}  // namespace
}  // namespace zvfilter
