#include "preview.h"

#include <algorithm>
#include <map>

#include <gtest/gtest.h>

#include "kit/frame/frame_attributes.h"
#include "kit/image/canvas.h"

namespace zvfilter {
namespace {

using kit::ColorMap;
using kit::Rgb;

constexpr std::uint32_t kGap = 6, kTop = 2 * kGap + kit::kTextHeight, kPanel = 150;

kit::Frame frame(std::uint32_t width, std::uint32_t height, std::vector<std::uint16_t> pixels) {
  return kit::describe_frame({width, height, std::move(pixels)}, {});
}

kit::ColorImage drawn(Preview& preview, const kit::Frame& before, const kit::Frame& after) {
  return preview.draw(preview.scale_of(before, after), before, after);
}

/// The first pixels of a row of one of the panels, which begin at even distances.
std::vector<Rgb> row(const kit::ColorImage& picture, std::size_t panel, std::size_t y, int count) {
  const auto start = picture.pixels.begin() + static_cast<std::ptrdiff_t>((kTop + y) * picture.width +
                                                                          kGap + panel * (kPanel + kGap));
  return {start, start + count};
}

Rgb at(const kit::ColorImage& picture, std::size_t panel, int x, std::size_t y) {
  return row(picture, panel, y, x + 1).back();
}

TEST(Preview, PaintsBeforeAfterAndTheChange) {
  Preview preview({ColorMap::viridis, kit::DepthRange{100, 300}});
  const kit::ColorImage picture =
      drawn(preview, frame(3, 2, {0, 0, 100, 200, 300, 9}), frame(3, 2, {0, 50, 0, 210, 280, 9}));
  EXPECT_EQ(picture.width, kGap + 3 * (kPanel + kGap));
  const auto color = [](double part) { return kit::color_of(ColorMap::viridis, part); };
  const Rgb hole = kit::hole_color(ColorMap::viridis);
  const kit::HoleColors holes;
  const std::vector<Rgb> rows[3][2] = {
      {{hole, hole, color(0)}, {color(0.5), color(1), color(0)}},
      {{hole, color(0), hole}, {color(0.55), color(0.9), color(0)}},
      {{holes.hole, holes.filled, holes.removed},
       {kit::signed_color(1), kit::signed_color(-1), kit::signed_color(0)}}};
  for (std::size_t panel = 0; panel < 3; ++panel) {
    for (std::size_t y = 0; y < 2; ++y) EXPECT_EQ(row(picture, panel, y, 3), rows[panel][y]) << panel;
    const auto title = picture.pixels.begin() +
                       static_cast<std::ptrdiff_t>(kGap * picture.width + kGap + panel * (kPanel + kGap));
    EXPECT_NE(std::count(title, title + kPanel, picture.pixels.front()), kPanel) << "a title above each";
  }
}

TEST(Preview, KeepsTheRangeOfTheFirstFrameThatHasOne) {
  Preview preview({});
  const kit::Frame first = frame(2, 1, {1000, 2000}), second = frame(2, 1, {2000, 4000});
  const kit::Frame empty = frame(2, 1, {0, 0});
  EXPECT_EQ(at(drawn(preview, empty, empty), 0, 0, 0), kit::hole_color(ColorMap::turbo));
  const Rgb far = at(drawn(preview, first, first), 0, 1, 0);
  EXPECT_EQ(far, kit::color_of(ColorMap::turbo, 1));
  EXPECT_EQ(at(drawn(preview, second, second), 0, 0, 0), far);
}

TEST(Preview, LeavesTheChangeOutWhereTheSizeChanges) {
  Preview preview({});
  const kit::ColorImage picture = drawn(preview, frame(2, 2, {1000, 0, 1000, 2000}), frame(1, 1, {2000}));
  EXPECT_EQ(picture.width, kGap + 2 * (kPanel + kGap));
  EXPECT_EQ(at(picture, 1, 0, 0), at(picture, 0, 1, 1));
}

TEST(Preview, ShowsDisparityInTheRangeOfItsDepth) {
  kit::FrameAttributes disparity;
  disparity.pixel_type = ZV_PIXEL_TYPE_DISPARITY;
  disparity.baseline = 50;
  disparity.fx = 600;
  const kit::Frame before = kit::describe_frame({2, 1, {2560, 5120}}, disparity);  // 10 and 20 pixels
  Preview preview({});
  const kit::ColorImage picture = drawn(preview, before, frame(2, 1, {3000, 1500}));
  EXPECT_EQ(at(picture, 0, 0, 0), at(picture, 1, 0, 0));
  EXPECT_EQ(at(picture, 0, 1, 0), at(picture, 1, 1, 0));
  EXPECT_EQ(at(picture, 2, 0, 0), kit::signed_color(0));
}

// Sums of pictures that were looked at: what is written and painted where.
TEST(Preview, NumbersTheLegend) {
  struct Case {
    std::uint32_t width;
    kit::DepthRange range;
    std::uint32_t sum;
  };
  for (const auto& [width, range, sum] :
       {Case{1, {1234, 2784}, 2655958925u}, Case{320, {1234, 65234}, 2462167510u},
        Case{479, {0.25, 1.75}, 3991861597u}, Case{480, {400, 65000}, 3653340448u},
        Case{640, {950, 2500}, 1296274304u}, Case{700, {7, 7}, 2695455152u}}) {
    Preview preview({ColorMap::grey, range});
    const kit::ColorImage picture =
        drawn(preview, frame(width, 1, std::vector<std::uint16_t>(width, 1000)),
              frame(width, 1, std::vector<std::uint16_t>(width, 1010)));
    std::uint32_t found = 0;
    for (const Rgb& pixel : picture.pixels)
      for (const std::uint8_t part : pixel) found = found * 31 + part;
    EXPECT_EQ(found, sum) << width;
  }
}

}  // namespace
}  // namespace zvfilter
