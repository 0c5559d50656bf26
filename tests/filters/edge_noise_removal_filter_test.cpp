#include "filters/edge_noise_removal_filter.h"

#include "support/filter_driver.h"

namespace filterprocessor {
namespace {

devhost::FrameTraits full(std::uint32_t width, std::uint32_t height) {
  return frame_of(Pixels(std::size_t{width} * height, 1000), height);
}

/// What is left of a full frame, in rows of that width, that loses columns and rows at each border.
Pixels without_border(std::uint32_t width, std::uint32_t height, std::uint32_t columns,
                      std::uint32_t rows) {
  Pixels pixels(std::size_t{width} * height);
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    const std::size_t x = i % width, y = i / width;
    const bool inside = x >= columns && x < width - columns && y >= rows && y < height - rows;
    pixels[i] = inside ? 1000 : 0;
  }
  return pixels;
}

void expect_cleared(FilterDriver& filter, std::uint32_t width, std::uint32_t height,
                    std::uint32_t columns, std::uint32_t rows) {
  EXPECT_EQ(filter.filtered(full(width, height)), without_border(width, height, columns, rows))
      << columns << " columns and " << rows << " rows of " << width << " x " << height;
}

TEST(EdgeNoiseRemovalFilter, ScalesItsThresholdsInBothDirectionsFromTheStart) {
  FilterDriver filter("EdgeNoiseRemovalFilter");
  expect_cleared(filter, 1280, 800, 6, 6);
  expect_cleared(filter, 848, 480, 3, 3);
  expect_cleared(filter, 160, 100, 0, 0);  // 0.75 is no pixel
  expect_cleared(filter, 11, 1, 0, 0);     // the smallest of one row
  EXPECT_EQ(filter.update({"8", "4", "70", "30", "0", "640", "400"}), kNoError);
  expect_cleared(filter, 640, 400, 8, 0);
  expect_cleared(filter, 320, 400, 4, 0);
  filter.reset();
  expect_cleared(filter, 1280, 800, 6, 6);  // vertically again, whatever the schema says
}

TEST(EdgeNoiseRemovalFilter, WorksOutItsParametersInFloatsTruncated) {
  zv_error* error = nullptr;
  EXPECT_EQ(EdgeNoiseRemovalFilter().updateConfig(848, 480, &error),
            (EdgeNoiseRemovalFilter::Parameters{3, 3, 46, 18, 848, 480, 1}));
  EXPECT_EQ(error, nullptr);
}

/// Working height is compared with the frame's width, so a frame across the anchor's size is taken for
/// one of that size.
TEST(EdgeNoiseRemovalFilter, ATransposedFrameRunsWithTheRowsOfTheAnchor) {
  FilterDriver filter("EdgeNoiseRemovalFilter");
  EXPECT_EQ(filter.filtered(full(800, 1280)), without_border(1280, 800, 6, 6));
  expect_cleared(filter, 640, 640, 3, 4);
  expect_cleared(filter, 800, 1280, 3, 9);  // once scaled for another size, it is scaled
  FilterDriver half("EdgeNoiseRemovalFilter");
  expect_cleared(half, 800, 400, 3, 3);  // as wide as the anchor is high
}

/// Only square frames keep the working parameters, and frames across the size they were made for.
TEST(EdgeNoiseRemovalFilter, AConfigurationCountsFromTheNextFrameOnce) {
  FilterDriver filter("EdgeNoiseRemovalFilter");
  expect_cleared(filter, 640, 640, 3, 4);
  EXPECT_EQ(filter.update({"12", "8", "70", "30", "1", "1280", "800"}), kNoError);
  expect_cleared(filter, 640, 640, 6, 6);

  FilterDriver same("EdgeNoiseRemovalFilter", {"6", "6", "70", "30", "1", "1280", "800"});
  EXPECT_EQ(same.filtered(full(800, 1280)), without_border(1280, 800, 6, 6))
      << "the same values change nothing";
  EXPECT_EQ(same.update({"6", "6", "70", "30", "0", "640", "400"}), kNoError);
  expect_cleared(same, 640, 400, 6, 0);
  EXPECT_EQ(same.filtered(full(400, 640)), without_border(640, 400, 6, 0))
      << "the change has been taken in";
  EXPECT_EQ(same.update({"9", "6", "70", "30", "0", "640", "400"}), kNoError);
  same.reset();
  EXPECT_EQ(same.filtered(full(800, 1280)), without_border(1280, 800, 6, 6)) << "as a new filter";
}

TEST(EdgeNoiseRemovalFilter, AMarginAboveItsLimitFailsEveryFrameOnly) {
  FilterDriver filter("EdgeNoiseRemovalFilter", {"80", "6", "70", "30", "0", "1280", "800"});
  for (int n = 0; n < 2; ++n) {
    EXPECT_EQ(filter.refused(full(1280, 800)), error_text("edge noise removal filter error",
                                                          "filter_process", "EdgeNoiseRemovalFilter", 0));
  }
  EXPECT_EQ(filter.update({"70", "31", "70", "30", "0", "1280", "800"}), kNoError);
  expect_cleared(filter, 1280, 800, 70, 0);  // only the rows' margin counts then
}

TEST(EdgeNoiseRemovalFilter, AFailedScalingIsTriedAgain) {
  FilterDriver filter("EdgeNoiseRemovalFilter");
  expect_cleared(filter, 640, 400, 3, 3);
  for (const auto& [width, height] : {std::pair{10u, 1u}, {10u, 1u}, {0u, 5u}, {5u, 0u}}) {
    devhost::FrameTraits tiny = full(10, 1);
    tiny.width = width;
    tiny.height = height;
    devhost::start_call_log();
    EXPECT_EQ(filter.refused(tiny), invalid("width||height"));
    EXPECT_EQ(std::ranges::count(devhost::stop_call_log(), "zv_create_frame_from_other_frame"), 0);
    EXPECT_EQ(filter.printed(), invalid("width||height"));
  }
  EXPECT_EQ(filter.filtered(full(800, 1280)), without_border(1280, 800, 6, 6))
      << "the unscaled values are stored";
}

}  // namespace
}  // namespace filterprocessor
