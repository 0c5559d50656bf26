#include "preview.h"

#include <gtest/gtest.h>

#include "kit/frame/frame_attributes.h"
#include "kit/image/color_map.h"

namespace zvfilter {
namespace {

TEST(Preview, PaintsBothFramesInOneRange) {
  const kit::Frame before = kit::describe_frame({2, 2, {0, 100, 200, 300}}, {});
  const kit::Frame after = kit::describe_frame({3, 1, {100, 300, 65535}}, {});
  const kit::ColorImage picture = preview(before, after);
  const auto at = [&](std::size_t x, std::size_t y) { return picture.pixels[y * picture.width + x]; };
  ASSERT_EQ(picture.width, 2u + 8u + 3u);
  ASSERT_EQ(picture.height, 2u);
  const kit::Rgb black{};
  EXPECT_EQ(at(0, 0), black);
  EXPECT_EQ(at(5, 0), black);
  EXPECT_EQ(at(10, 1), black);
  EXPECT_EQ(at(1, 0), kit::rainbow(0));
  EXPECT_EQ(at(1, 0), at(10, 0));
  EXPECT_EQ(at(12, 0), kit::rainbow(1));
}

}  // namespace
}  // namespace zvfilter
