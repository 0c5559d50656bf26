#include "filters/hole_filling_filter.h"

#include "support/filter_driver.h"

namespace filterprocessor {
namespace {

constexpr const char* kName = "HoleFillingFilter";
const ErrorTexts kBadMode = {"invalid hole filling mode params", "update_filter_config", "argv", 4};

/// 8 x 3 pixels: one hole at (1, 1) between 700 above, 900 below and 800 to the left.
devhost::FrameTraits one_hole() {
  devhost::FrameTraits traits;
  traits.width = 8;
  traits.height = 3;
  traits.pixels = Pixels(24, 800);
  traits.pixels[1] = 700;
  traits.pixels[9] = 0;
  traits.pixels[17] = 900;
  return traits;
}

std::uint16_t filled(FilterDriver& filter, const devhost::FrameTraits& traits) {
  const devhost::Frame output = filter.process(devhost::make_frame(traits));
  EXPECT_EQ(filter.last_error(), kNoError);
  return output ? devhost::inspect(output.get()).pixels[9] : std::uint16_t{0};
}

TEST(HoleFillingFilter, NearestAndFarthestChangePlacesForDisparity) {
  FilterDriver filter(kName);
  devhost::FrameTraits depth = one_hole();
  devhost::FrameTraits disparity = one_hole();
  disparity.pixel_type = ZV_PIXEL_TYPE_DISPARITY;
  EXPECT_EQ(filled(filter, depth), 700) << "top, before any configuration";
  EXPECT_EQ(filter.update({"1"}), kNoError);
  EXPECT_EQ(filled(filter, depth), 700);
  EXPECT_EQ(filled(filter, disparity), 900);
  EXPECT_EQ(filter.update({"2"}), kNoError);
  EXPECT_EQ(filled(filter, depth), 900);
  EXPECT_EQ(filled(filter, disparity), 700);
  filter.reset();
  EXPECT_EQ(filled(filter, disparity), 700) << "top again";
}

/// The public operations never store a mode outside 0 to 2.
struct StrangeMode : HoleFillingFilter {
  StrangeMode() { hole_filling_mode = 3; }
};

TEST(HoleFillingFilter, AnUnknownModeReportsAndPassesTheFrameButNotTheSet) {
  const ErrorTexts expected = {"invalid hole filling mode,please check the parameters", "filter_process",
                               "hole filling mode", 4};
  StrangeMode filter;
  EXPECT_EQ(FilterDriver::output_of([&] { filter.print_key_params(); }), "");
  const devhost::LiveObjects before = devhost::live_objects();
  {
    zv_error* error = nullptr;
    const devhost::Frame frame = devhost::make_frame(one_hole());
    const devhost::Frame output(filter.filter_process(frame.get(), &error));
    ASSERT_TRUE(output);
    EXPECT_EQ(devhost::inspect(output.get()).pixels, one_hole().pixels);
    EXPECT_EQ(texts_of(error), expected);

    const devhost::Frame set = devhost::make_frame_set(devhost::make_frame(one_hole()));
    error = nullptr;
    const std::string printed =
        FilterDriver::output_of([&] { EXPECT_EQ(filter.filter_process(set.get(), &error), nullptr); });
    EXPECT_EQ(texts_of(error), expected);
    EXPECT_EQ(printed,
              "zv_error was raised: \n\tcall: filter_process(hole filling mode)\n"
              "\tmessage: invalid hole filling mode,please check the parameters\n\terror type: 4\n");
  }
  EXPECT_EQ(devhost::live_objects(), before);
}

}  // namespace
}  // namespace filterprocessor
