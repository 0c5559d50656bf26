// What pixels mean, and their colours.
#include <gtest/gtest.h>

#include "kit/frame/frame_attributes.h"
#include "kit/frame/frame_colors.h"
#include "kit/frame/pixel_reader.h"
#include "kit/image/color_map.h"

namespace kit {
namespace {

Frame row(std::vector<std::uint16_t> pixels) {
  const auto width = static_cast<std::uint32_t>(pixels.size());
  return describe_frame({width, 1, std::move(pixels)}, {});
}

Frame disparity(std::vector<std::uint16_t> codes, std::uint8_t pack_mode, bool dual, int format = 0) {
  Frame frame = row(std::move(codes));
  frame.format = format;
  frame.pixel_type = ZV_PIXEL_TYPE_DISPARITY;
  frame.disparity.packMode = pack_mode;
  frame.disparity.isDualCamera = dual;
  frame.disparity.bitSize = 14;
  return frame;
}

std::vector<Rgb> colors(const Frame& frame) {
  return color_image(frame, distance_range({&frame})).pixels;
}

const Rgb kBlack{};

TEST(Colors, AreNotRuledByOutliersNorByFlatImages) {
  std::vector<std::uint16_t> pixels(100);
  for (std::size_t i = 0; i < 100; ++i) pixels[i] = static_cast<std::uint16_t>(1000 + i);
  pixels[50] = 60000;
  const auto painted = colors(row(pixels));
  EXPECT_EQ(painted[99], rainbow(1));
  EXPECT_EQ(painted[0], rainbow(0));
  EXPECT_EQ(colors(row({7}))[0], rainbow(0.5));
  EXPECT_EQ(colors(row({0}))[0], kBlack);
}

TEST(Pixels, SayNearAndFarWhateverTheUnit) {
  // An invalid pixel, then near to far.
  const Frame frames[] = {
      row({0, 500, 1000, 4000}),
      disparity({0, 9000, 8192, 100}, 2, true),
      disparity({65532, 65531, 7, 1}, 4, false),
      disparity({0, 10, 20, 16000}, 1, true),     // a large code is a small disparity
      disparity({8192, 5, 0, 0x3FFF}, 2, false),  // 5, 0 and -1 in 14 bits
      disparity({15, 0x20F, 0x1F0, 0x010}, 2, true, ZV_FORMAT_PACKED_CODE),
  };
  for (const Frame& frame : frames) {
    SCOPED_TRACE(&frame - frames);
    EXPECT_EQ(count_valid(frame), 3u);
    const auto painted = colors(frame);
    EXPECT_EQ(painted[0], kBlack);
    EXPECT_EQ(painted[1], rainbow(0));
    EXPECT_EQ(painted[3], rainbow(1));
    const PixelReader reader(frame);
    EXPECT_LT(reader.distance_rank(frame.pixels[1]), reader.distance_rank(frame.pixels[2]));
    EXPECT_LT(reader.distance_rank(frame.pixels[2]), reader.distance_rank(frame.pixels[3]));
  }
}

}  // namespace
}  // namespace kit
