#include "filters/hole_filling_filter.h"

#include "support/filter_driver.h"

namespace filterprocessor {
namespace {

/// One hole, at the fourth pixel of the second row, between 700 above, 900 below and 800 beside it.
devhost::FrameTraits one_hole(std::int32_t pixel_type = ZV_PIXEL_TYPE_DEPTH) {
  Pixels pixels(24, 800);
  pixels[3] = 700;
  pixels[11] = 0;
  pixels[19] = 900;
  devhost::FrameTraits traits = frame_of(pixels, 3);
  traits.pixel_type = pixel_type;
  return traits;
}

TEST(HoleFillingFilter, NearestAndFarthestChangePlacesForDisparity) {
  FilterDriver filter("HoleFillingFilter");
  const auto filled = [&](std::int32_t pixel_type) { return filter.filtered(one_hole(pixel_type))[11]; };
  EXPECT_EQ(filled(ZV_PIXEL_TYPE_DEPTH), 700) << "top, before any configuration";
  EXPECT_EQ(filter.update({"1"}), kNoError);
  EXPECT_EQ(filled(ZV_PIXEL_TYPE_DEPTH), 700);
  EXPECT_EQ(filled(ZV_PIXEL_TYPE_DISPARITY), 900);
  EXPECT_EQ(filter.update({"2"}), kNoError);
  EXPECT_EQ(filled(ZV_PIXEL_TYPE_DEPTH), 900);
  EXPECT_EQ(filled(ZV_PIXEL_TYPE_DISPARITY), 700);
  EXPECT_NE(filter.update({"3"}), kNoError);
  EXPECT_EQ(filled(ZV_PIXEL_TYPE_DEPTH), 900) << "as before";
  filter.reset();
  EXPECT_EQ(filled(ZV_PIXEL_TYPE_DISPARITY), 700) << "top again";
}

/// The public operations never store a mode outside 0 to 2.
struct StrangeMode : HoleFillingFilter {
  StrangeMode() { hole_filling_mode = 3; }
};

TEST(HoleFillingFilter, AnUnknownModeReportsAndPassesTheFrameButNotTheSet) {
  const std::string expected = error_text("invalid hole filling mode,please check the parameters",
                                          "filter_process", "hole filling mode");
  StrangeMode filter;
  EXPECT_EQ(FilterDriver::output_of([&] { filter.print_key_params(); }), "");
  zv_error* error = nullptr;
  devhost::Frame frame = devhost::make_frame(one_hole());
  const devhost::Frame output(filter.filter_process(frame.get(), &error));
  ASSERT_TRUE(output);
  EXPECT_EQ(devhost::inspect(output.get()).pixels, one_hole().pixels);
  EXPECT_EQ(text_of(error), expected);

  error = nullptr;
  const devhost::Frame set = devhost::make_frame_set(std::move(frame));
  const std::string printed =
      FilterDriver::output_of([&] { EXPECT_EQ(filter.filter_process(set.get(), &error), nullptr); });
  EXPECT_EQ(text_of(error), expected);
  EXPECT_EQ(printed, expected);
}

}  // namespace
}  // namespace filterprocessor
