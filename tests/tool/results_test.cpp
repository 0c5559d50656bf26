// What a run makes of its frames: attributes, statistics, previews and tables.
#include <sstream>

#include <gtest/gtest.h>

#include "frame_attributes.h"
#include "preview.h"
#include "run.h"
#include "table.h"

namespace zvfilter {
namespace {

// The plus signs copy fields of the packed record, to which no reference may be bound.
TEST(FrameAttributes, DefaultToANominalCamera) {
  const auto frame = describe_frame(make_image(640, 360), {});
  EXPECT_EQ(frame.width, 640u);
  EXPECT_EQ(frame.height, 360u);
  EXPECT_EQ(frame.pixels.size(), 640u * 360u);
  EXPECT_EQ(frame.bits, 16);
  EXPECT_EQ(frame.disparity.bitSize, 16);
  EXPECT_EQ(+frame.disparity.dispIntPlace, 8);
  EXPECT_EQ(frame.disparity.packMode, 2);
  EXPECT_EQ(frame.disparity.isDualCamera, 1);
  EXPECT_FLOAT_EQ(+frame.disparity.baseline, 50);
  EXPECT_DOUBLE_EQ(+frame.disparity.fx, 448);
  EXPECT_FLOAT_EQ(frame.intrinsic.fx, 448);
  EXPECT_FLOAT_EQ(frame.intrinsic.cx, 320);
  EXPECT_EQ(frame.intrinsic.height, 360);
}

TEST(FrameAttributes, TakeWhatIsGiven) {
  FrameAttributes attributes;
  attributes.baseline = 75;
  attributes.fx = 500;
  attributes.bits = 6;
  attributes.value_scale = 0.1f;
  const auto frame = describe_frame(make_image(40000, 1), attributes);
  EXPECT_FLOAT_EQ(+frame.disparity.baseline, 75);
  EXPECT_DOUBLE_EQ(+frame.disparity.fx, 500);
  EXPECT_EQ(frame.bits - frame.disparity.dispIntPlace, 0);
  EXPECT_EQ(frame.value_scale, 0.1f);
  EXPECT_EQ(frame.intrinsic.width, 32767);
}

TEST(FilterStatistics, CountPixelsUntilTheSizeChanges) {
  FilterStatistics statistics;
  statistics.add({2, 2, {0, 1, 2, 0}}, {2, 2, {5, 1, 0, 0}}, 1);
  statistics.add({2, 2, {0, 0, 0, 0}}, {2, 2, {0, 0, 0, 9}}, 1);
  EXPECT_EQ(statistics.frames, 2u);
  EXPECT_EQ(statistics.valid_before, 2u);
  EXPECT_EQ(statistics.valid_after, 3u);
  EXPECT_EQ(statistics.changed, 3u);
  statistics.add({1, 1, {1}}, {2, 1, {1, 1}}, 1);
  statistics.add({1, 1, {1}}, {1, 1, {2}}, 1);
  EXPECT_FALSE(statistics.changed.has_value());
  EXPECT_EQ(statistics.valid_after, 6u);
}

using Rgb = std::array<unsigned char, 3>;

Rgb pixel_of(const ColorImage& picture, std::uint32_t x, std::uint32_t y) {
  const unsigned char* at = picture.pixels.data() + (std::size_t{y} * picture.width + x) * 3;
  return {at[0], at[1], at[2]};
}

TEST(Preview, PaintsBothImagesInOneRange) {
  const ColorImage picture = preview({2, 2, {0, 100, 200, 300}}, {3, 1, {100, 300, 65535}});
  ASSERT_EQ(picture.width, 2u + 8u + 3u);
  ASSERT_EQ(picture.height, 2u);
  const Rgb black{};
  EXPECT_EQ(pixel_of(picture, 0, 0), black);
  EXPECT_EQ(pixel_of(picture, 5, 0), black);
  EXPECT_EQ(pixel_of(picture, 10, 1), black);
  EXPECT_EQ(pixel_of(picture, 1, 0), rainbow(0));
  EXPECT_EQ(pixel_of(picture, 1, 0), pixel_of(picture, 10, 0));
  EXPECT_EQ(pixel_of(picture, 12, 0), rainbow(1));
}

TEST(Preview, IsNotRuledByOutliersNorByFlatImages) {
  Image image = make_image(100, 1);
  for (std::size_t i = 0; i < 100; ++i) image.pixels[i] = static_cast<std::uint16_t>(1000 + i);
  image.pixels[50] = 60000;
  const ColorImage picture = preview(image, image);
  EXPECT_EQ(pixel_of(picture, 99, 0), rainbow(1));
  EXPECT_EQ(pixel_of(picture, 0, 0), rainbow(0));

  EXPECT_EQ(pixel_of(preview({1, 1, {7}}, {1, 1, {7}}), 0, 0), rainbow(0.5));
  EXPECT_EQ(pixel_of(preview({1, 1, {0}}, {1, 1, {0}}), 0, 0), Rgb{});
}

TEST(Table, AlignsItsColumns) {
  Table table({"filter", "frames"});
  table.add({"LongerName", "8"});
  std::ostringstream out;
  table.print(out);
  EXPECT_EQ(out.str(), "filter      frames\nLongerName       8\n");
}

}  // namespace
}  // namespace zvfilter
