// What a run makes of its frames: attributes, statistics, previews and tables.
#include <sstream>

#include <gtest/gtest.h>

#include "frame_attributes.h"
#include "preview.h"
#include "run.h"
#include "table.h"

namespace zvfilter {
namespace {

FrameImage depth(Image image) { return FrameImage(std::move(image)); }

using Rgb = std::array<unsigned char, 3>;

Rgb pixel_of(const ColorImage& picture, std::uint32_t x, std::uint32_t y) {
  const unsigned char* at = picture.pixels.data() + (std::size_t{y} * picture.width + x) * 3;
  return {at[0], at[1], at[2]};
}

TEST(Preview, PaintsBothImagesInOneRange) {
  const ColorImage picture = preview(depth({2, 2, {0, 100, 200, 300}}), depth({3, 1, {100, 300, 65535}}));
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
  const ColorImage picture = preview(depth(image), depth(image));
  EXPECT_EQ(pixel_of(picture, 99, 0), rainbow(1));
  EXPECT_EQ(pixel_of(picture, 0, 0), rainbow(0));

  EXPECT_EQ(pixel_of(preview(depth({1, 1, {7}}), depth({1, 1, {7}})), 0, 0), rainbow(0.5));
  EXPECT_EQ(pixel_of(preview(depth({1, 1, {0}}), depth({1, 1, {0}})), 0, 0), Rgb{});
}

/// A disparity frame of one row.
FrameImage disparity(std::vector<std::uint16_t> codes, std::uint8_t pack_mode, bool dual,
                     int format = 0) {
  devhost::FrameTraits frame;
  frame.width = static_cast<std::uint32_t>(codes.size());
  frame.height = 1;
  frame.format = format;
  frame.pixel_type = ZV_PIXEL_TYPE_DISPARITY;
  frame.disparity.packMode = pack_mode;
  frame.disparity.isDualCamera = dual;
  frame.disparity.bitSize = 14;
  frame.pixels = std::move(codes);
  return FrameImage(std::move(frame));
}

TEST(Preview, ShowsNearInOneColourWhateverTheUnit) {
  const FrameImage metres = depth({4, 1, {0, 500, 1000, 4000}});  // an invalid pixel, then near to far
  const auto expect_like_depth = [&](const FrameImage& other) {
    EXPECT_EQ(count_valid(other), 3u);
    for (const ColorImage& picture : {preview(other, metres), preview(metres, other)}) {
      for (const std::uint32_t start : {0u, 12u}) {
        EXPECT_EQ(pixel_of(picture, start, 0), Rgb{});
        EXPECT_EQ(pixel_of(picture, start + 1, 0), rainbow(0));
        EXPECT_EQ(pixel_of(picture, start + 3, 0), rainbow(1));
      }
    }
  };
  expect_like_depth(disparity({0, 9000, 8192, 100}, 2, true));
  expect_like_depth(disparity({65532, 65531, 7, 1}, 4, false));
  expect_like_depth(disparity({0, 10, 20, 16000}, 1, true));     // a large code is a small disparity
  expect_like_depth(disparity({8192, 5, 0, 0x3FFF}, 2, false));  // 5, 0 and -1 in 14 bits
  expect_like_depth(disparity({15, 0x20F, 0x1F0, 0x010}, 2, true, ZV_FORMAT_PACKED_CODE));
}

}  // namespace
}  // namespace zvfilter
