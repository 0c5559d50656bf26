#include "kernels/resize/resize.h"

#include <limits>

#include "filters/depth_resize.h"
#include "support/levels.h"
#include "support/random_image.h"

namespace filterprocessor {
namespace {

struct ResizeLevel : LevelTest {
  static Pixels resize(const KernelSet& kernels, const Pixels& source, const ResizeAxis& columns,
                       const ResizeAxis& rows) {
    Pixels target(columns.target_size * rows.target_size, 0xdead);
    kernels.resize.resize(source.data(), columns, rows, target.data());
    return target;
  }
};
FILTERPROCESSOR_EVERY_LEVEL(ResizeLevel);

class ResizeVectors : public ResizeLevel {};
FILTERPROCESSOR_VECTOR_LEVELS(ResizeVectors);

/// A row of 1, 2, ... resized by one axis.
Pixels resized_row(const KernelSet& kernels, int width, int target, float scale, int before) {
  Pixels source(static_cast<std::size_t>(width));
  for (std::size_t i = 0; i < source.size(); ++i) source[i] = static_cast<std::uint16_t>(i + 1);
  return ResizeLevel::resize(kernels, source, resize_axis(width, target, scale, before),
                             resize_axis(1, 1, 1.0f, 0));
}

/// The same along a column.
Pixels resized_column(const KernelSet& kernels, int height, int target, float scale, int before) {
  Pixels source(static_cast<std::size_t>(height));
  for (std::size_t i = 0; i < source.size(); ++i) source[i] = static_cast<std::uint16_t>(i + 1);
  return ResizeLevel::resize(kernels, source, resize_axis(1, 1, 1.0f, 0),
                             resize_axis(height, target, scale, before));
}

TEST_P(ResizeLevel, StepsThroughTheSourceInFixedPoint) {
  EXPECT_EQ(resized_row(kernels(), 6, 3, 0.5f, 0), (Pixels{1, 3, 5}));
  EXPECT_EQ(resized_row(kernels(), 3, 6, 2.0f, 0), (Pixels{1, 1, 2, 2, 3, 3}));
  EXPECT_EQ(resized_row(kernels(), 4, 6, 1.0f, 2), (Pixels{0, 0, 1, 2, 3, 4}));
  EXPECT_EQ(resized_row(kernels(), 4, 6, 1.0f, 0), (Pixels{1, 2, 3, 4, 0, 0})) << "a band on the right";
  EXPECT_EQ(resized_row(kernels(), 6, 3, 1.0f, -2), (Pixels{3, 4, 5}));
  EXPECT_EQ(resized_row(kernels(), 6, 9, 2.0f, -3), (Pixels{2, 2, 3, 3, 4, 4, 5, 5, 6}));
  EXPECT_EQ(resized_row(kernels(), 4, 2, 1.0f, 3), (Pixels{0, 0})) << "all that is left is the band";
  EXPECT_EQ(resized_row(kernels(), 4, 2, 1.0f, -9), (Pixels{0, 0}));
}

TEST_P(ResizeLevel, TheStepIsOneTooLargeAndReadsNothingPastTheEnd) {
  // 65536 / 50 + 1 = 1311: the position gains 0.3 pixels on 1000 and passes the last one early.
  const Pixels row = resized_row(kernels(), 1000, 50000, 50.0f, 0);
  EXPECT_EQ(row[49990], 0);
  EXPECT_EQ(row[(999u << 16) / 1311 + 1], 1000);
  EXPECT_EQ(row[(1000u << 16) / 1311], 1000);
  EXPECT_EQ(row[(1000u << 16) / 1311 + 1], 0);
  EXPECT_EQ(resized_column(kernels(), 1000, 50000, 50.0f, 0), row) << "rows as columns";
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

TEST_P(ResizeVectors, EqualsThePlainFormAtAnySizeScaleAndBand) {
  Random random(8);
  const float scales[] = {1.0f, 2.0f, 1.5f, 0.5f, 0.3f, 0.1f, 3.7f, 1.01f, 0.99f, 0.73f, 50.0f};
  for (int round = 0; round < 3000; ++round) {
    const bool wide = random.one_in(10);
    const int width = wide ? random.integer(900, 5000) : random.integer(1, 300);
    const int height = random.integer(1, 12);
    const float scale = random.one_in(3) ? random.real(0.1f, 4.0f) : scales[random.integer(0, 10)];
    const auto band = [&] { return random.one_in(2) ? 0 : random.integer(-40, 40); };
    const int left = band();
    const int top = band();
    const int target_width = target_extent(static_cast<float>(width), scale, left, band());
    const int target_height = target_extent(static_cast<float>(height), scale, top, band());
    if (target_width < 1 || target_height < 1 || target_width * target_height > 40000) continue;
    const ResizeAxis columns = resize_axis(width, target_width, scale, left);
    const ResizeAxis rows = resize_axis(height, target_height, scale, top);
    const auto count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    const Pixels source = random.pixels(count, 30000, 29999, 9);
    ASSERT_EQ(resize(kernels(), source, columns, rows), resize(plain(), source, columns, rows))
        << width << 'x' << height << " by " << scale << ", " << left << ", " << top;
  }
}

TEST_P(ResizeLevel, CountersOf32BitsWrap) {
  const int width = 70000;
  Pixels source(static_cast<std::size_t>(width));
  for (std::size_t i = 0; i < source.size(); ++i) source[i] = static_cast<std::uint16_t>(i % 60000 + 1);
  const ResizeAxis columns = resize_axis(width, 7000, 0.1f, 0);
  const Pixels row = resize(kernels(), source, columns, resize_axis(1, 1, 1.0f, 0));
  EXPECT_EQ(row, resize(plain(), source, columns, resize_axis(1, 1, 1.0f, 0)));
  EXPECT_EQ(row[6553], source[65530]);
  EXPECT_EQ(row[6554], source[4]) << "65540 in 16 bits";
  EXPECT_EQ(resize(kernels(), source, resize_axis(1, 1, 1.0f, 0), columns), row) << "rows as columns";
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
  EXPECT_EQ(target, Pixels(6, 9)) << "nothing was written so far";
  EXPECT_EQ(process(-3, 2, {.scale = 1, .ex_left = 5}, 2, 2), 0);
  EXPECT_EQ(target, (Pixels{0, 0, 0, 0, 9, 9})) << "a source without pixels";
  EXPECT_EQ(process(3, 2, {.scale = 1, .ex_left = -1, .ex_top = 1, .ex_bottom = -1}, 2, 2), 0);
  EXPECT_EQ(target, (Pixels{0, 0, 2, 3, 9, 9}));
}

}  // namespace
}  // namespace filterprocessor
