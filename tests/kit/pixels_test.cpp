// What pixels mean, and their colours.
#include <cmath>
#include <map>

#include <gtest/gtest.h>

#include "filter_run.h"
#include "kit/frame/depth_reader.h"
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
  return color_image(frame, depth_range({frame}).value_or(DepthRange{}), ColorMap::turbo).pixels;
}

Rgb rainbow(double value) { return color_of(ColorMap::turbo, value); }

const Rgb kHole = hole_color(ColorMap::turbo);

TEST(Colors, AreNotRuledByOutliersNorByFlatImages) {
  std::vector<std::uint16_t> pixels(100);
  for (std::size_t i = 0; i < 100; ++i) pixels[i] = static_cast<std::uint16_t>(1000 + i);
  pixels[50] = 60000;
  pixels[51] = 1;
  const auto painted = colors(row(pixels));
  EXPECT_EQ(painted[99], rainbow(1));
  EXPECT_EQ(painted[1], rainbow(0));
  EXPECT_EQ(colors(row({7}))[0], rainbow(0.5));
  EXPECT_EQ(colors(row({0}))[0], kHole);
}

TEST(Colors, AreThoseOfTheMapsAndHolesAreNoDepth) {
  const std::map<double, Rgb> viridis = {{0, {68, 1, 84}}, {0.5, {33, 145, 140}}, {1, {253, 231, 37}}};
  for (const auto& [value, color] : viridis) EXPECT_EQ(color_of(ColorMap::viridis, value), color);
  EXPECT_EQ(color_of(ColorMap::grey, 2), (Rgb{16, 16, 16}));
  EXPECT_EQ(signed_color(-3), signed_color(-1));
  EXPECT_EQ(color_map_named("jet"), std::nullopt);
  for (const char* name : {"turbo", "viridis", "grey"}) {
    const ColorMap map = color_map_named(name).value();
    const Rgb hole = hole_color(map);
    for (int i = 0; i <= 100; ++i) {
      const Rgb color = color_of(map, i / 100.0);
      int distance = 0;
      for (std::size_t c = 0; c < 3; ++c) distance += std::abs(color[c] - hole[c]);
      EXPECT_GT(distance, 60) << name << ' ' << i;
    }
  }
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
    const PixelReader reader(frame);
    EXPECT_FALSE(reader.distance_rank(frame.pixels[0]));
    EXPECT_LT(reader.distance_rank(frame.pixels[1]), reader.distance_rank(frame.pixels[2]));
    EXPECT_LT(reader.distance_rank(frame.pixels[2]), reader.distance_rank(frame.pixels[3]));
  }
}

TEST(Pixels, HaveTheDepthThatTheFilterGivesThem) {
  for (const char* coding : {"", ",pack-mode=1", ",pack-mode=3", ",mono", ",mono,pack-mode=1",
                             ",mono,pack-mode=4", ",pixel-format=34", ",correction=-3", ",bits=14"}) {
    SCOPED_TRACE(coding);
    const Frames frames = camera_frames(concat("frames=1,size=96x64", coding));
    const Frame converted = run_chain("DisparityTransform", frames)[0];
    const Frame copy = frame_of(frames[0]);
    const DepthReader before(copy), after(converted);
    std::size_t compared = 0;
    for (std::size_t i = 0; i < converted.pixels.size(); ++i) {
      const double depth = after.millimetres(converted.pixels[i]);
      if (depth == 0) continue;
      ++compared;
      ASSERT_NEAR(before.millimetres(frames[0].pixels[i]), depth, 1);
    }
    EXPECT_GT(compared, 1000u);
  }
}

}  // namespace
}  // namespace kit
