#include "kernels/resize/resize.h"

#include <limits>

#include "filters/depth_resize.h"
#include "support/levels.h"

namespace filterprocessor {
namespace {

struct ResizeLevel : LevelTest {
  /// A row of 1, 2, ... 60000, 1, ... resized by one axis; as a column it gives the same.
  static Pixels resized(int size, int target_size, float scale, int before) {
    Pixels source(static_cast<std::size_t>(size));
    for (std::size_t i = 0; i < source.size(); ++i) source[i] = static_cast<std::uint16_t>(i % 60000 + 1);
    const ResizeAxis axis = resize_axis(size, target_size, scale, before);
    const ResizeAxis single = resize_axis(1, 1, 1.0f, 0);
    Pixels row(axis.target_size, 0xdead), column = row;
    kernels().resize.resize(source.data(), axis, single, row.data());
    kernels().resize.resize(source.data(), single, axis, column.data());
    EXPECT_EQ(row, column);
    return row;
  }
};
FILTERPROCESSOR_EVERY_LEVEL(ResizeLevel);

TEST_P(ResizeLevel, StepsThroughTheSourceInFixedPoint) {
  EXPECT_EQ(resized(6, 3, 0.5f, 0), (Pixels{1, 3, 5}));
  EXPECT_EQ(resized(3, 6, 2.0f, 0), (Pixels{1, 1, 2, 2, 3, 3}));
  EXPECT_EQ(resized(4, 6, 1.0f, 2), (Pixels{0, 0, 1, 2, 3, 4}));
  EXPECT_EQ(resized(4, 6, 1.0f, 0), (Pixels{1, 2, 3, 4, 0, 0})) << "a band on the right";
  EXPECT_EQ(resized(6, 3, 1.0f, -2), (Pixels{3, 4, 5}));
  EXPECT_EQ(resized(6, 9, 2.0f, -3), (Pixels{2, 2, 3, 3, 4, 4, 5, 5, 6}));
  EXPECT_EQ(resized(4, 2, 1.0f, 3), (Pixels{0, 0})) << "all that is left is the band";
  EXPECT_EQ(resized(4, 2, 1.0f, -9), (Pixels{0, 0}));
  EXPECT_EQ(resized(70, 2, 0.12f, -8), (Pixels{0, 0})) << "though a pixel is left at the start";
}

TEST_P(ResizeLevel, TheStepIsOneTooLargeAndCountersOf32BitsWrap) {
  // 65536 / 50 + 1 = 1311: the position gains 0.3 pixels on 1000 and passes the last one early.
  Pixels row = resized(1000, 50000, 50.0f, 0);
  EXPECT_EQ(row[49990], 0);
  EXPECT_EQ(row[(999u << 16) / 1311 + 1], 1000);
  EXPECT_EQ(row[(1000u << 16) / 1311], 1000);
  EXPECT_EQ(row[(1000u << 16) / 1311 + 1], 0) << "nothing is read past the end";
  row = resized(70000, 7000, 0.1f, 0);
  EXPECT_EQ(row[6553], 65530 - 60000 + 1);
  EXPECT_EQ(row[6554], 4 + 1) << "65540 in 16 bits";
  EXPECT_EQ(resized(65536, 65536, 1.0f, 0).back(), 65535 - 60000 + 1) << "the largest position";
}

/// The products are rounded to 32 bits before anything is added, and so are the steps.
TEST(ResizeAxis, IsWorkedOutInFloatsStepByStep) {
  EXPECT_EQ(target_extent(400, 0.12f, -40, 0), 8) << "48 after rounding, less before";
  EXPECT_EQ(target_extent(641, 1.0f, 100000000, -100000000), 640) << "from left to right";
  EXPECT_EQ(target_extent(1e30f, 50.0f, 0, 0), std::numeric_limits<std::int32_t>::max());
  EXPECT_EQ(resize_axis(100, 9, 0.1f, -1).source_start, 10u << 16);
  EXPECT_EQ(resize_axis(100, 10, 0.1f, 0).source_step, 655361u);
  EXPECT_EQ(resize_axis(70001, 1, 1.0f, -70000).source_start >> 16, 70000u - 65536u) << "32 bits wrap";
}

TEST(DepthProcess, ChecksSizesThenScaleThenAgreement) {
  DepthResize filter;
  const Pixels source = {1, 2, 3, 4, 5, 6};
  Pixels target(6, 9);
  const auto process = [&](int w, int h, DepthResize::ProcessParam param, int tw, int th) {
    return filter.depthProcess(source.data(), w, h, param, target.data(), tw, th);
  };
  EXPECT_EQ(process(0, 2, {}, 3, 2), -1);
  EXPECT_EQ(process(3, 2, {}, 3, 0), -1);
  EXPECT_EQ(process(3, 2, {}, 3, 2), -2);
  EXPECT_EQ(process(3, 2, {.scale = 0.0009f}, 1, 1), -2);
  EXPECT_EQ(process(3, 2, {.scale = 1}, 3, 1), -3);
  EXPECT_EQ(process(3, 2, {.scale = std::numeric_limits<float>::quiet_NaN()}, 3, 2), -3);
  EXPECT_EQ(process(-3, -2, {.scale = 1}, -3, -2), 0);
  EXPECT_EQ(process(3, 2, {.scale = 1, .ex_left = -9}, -6, 2), 0);
  EXPECT_EQ(target, Pixels(6, 9)) << "nothing was written so far";
  EXPECT_EQ(process(-3, 2, {.scale = 1, .ex_left = 5}, 2, 2), 0);
  EXPECT_EQ(target, (Pixels{0, 0, 0, 0, 9, 9})) << "a source without pixels";
  EXPECT_EQ(process(3, 2, {.scale = 1, .ex_left = -1, .ex_top = 1, .ex_bottom = -1}, 2, 2), 0);
  EXPECT_EQ(target, (Pixels{0, 0, 2, 3, 9, 9}));
}

}  // namespace
}  // namespace filterprocessor
