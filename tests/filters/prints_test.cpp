// What filters print is read by scripts: the texts stay, whatever the program does to std::cout.
#include <iomanip>
#include <iostream>
#include <locale>
#include <memory>

#include "framework/registry/filter_factory.h"
#include "support/every_filter.h"
#include "support/filter_driver.h"

namespace filterprocessor {
namespace {

struct Print {
  int index;                               ///< of the filter
  std::vector<const char*> configuration;  ///< none: as it is made
  std::string text;
  std::int32_t pixel_type = ZV_PIXEL_TYPE_DEPTH;
  bool reset = false;
};

const std::string kRecord =
    "d2dParameters: \nbaseline:      50.1\nbitSize:       \x10\ndispIntPlace:  8\ndispOffset:    0\n"
    "fx:            600\ninvalidDisp:   0\nisDualCamera:  \x01\nminDisparity:  0\n"
    "packMode:      \x02\nunit:          1\nzpd:           1234.57\nzpps:          0.25\n";

const std::string kAsMade = "width:    848\nheight:   480\nmax_size: 80\nmin_diff: 256\n",
                  kAnchor = "anchor_params: \n" + kAsMade + "current_filter_params: \n",
                  kNoiseFrame = "current_frame_info: \nwidth:      640\nheight:     400\nbxf:        ",
                  kNoise = kAnchor + "width:    640\nheight:   400\nmax_size: 50\nmin_diff: 256\n" +
                           kNoiseFrame,
                  kLinear =
                      "0\ndepth_flag: 4\n"
                      "depth_unit: 1\nfraction_bit_size: \x06\n"
                      "depth_diff_lut: \n256 512 768 1024 1280 1536 1792 \ndepth_shift: \x09\n";

const std::string kSpatial =
    "anchor_params: \nalpha:     0.5\ndisp_diff: 160\nmagnitude: 1\nradius:    1\n"
    "current_filter_params: \nalpha:     0.5\ndisp_diff: 160\nmagnitude: 1\nradius:    1\n"
    "current_frame_info: \nwidth:      640\nheight:     400\nbxf:        30060\ndepth_flag: 0\n"
    "depth_unit: 1\nfraction_bit_size: 8\n"
    "depth_diff_lut: 5 20 46 83 129 187 254\ndepth_shift: 9\n";

/// After a frame of 640 x 400 and, where it says so, a reset.
const Print kPrints[] = {
    {0, {}, kRecord, ZV_PIXEL_TYPE_DISPARITY},
    {1, {}, "hole filling mode: top\n"},
    {1, {"1"}, "hole filling mode: nearest\n"},
    {1, {"2"}, "hole filling mode: farest\n"},
    {2,
     {},
     kNoise + "30060\ndepth_flag: 0\n"
              "depth_unit: 1\nfraction_bit_size: \x08\n"
              "depth_diff_lut: \n8 33 74 133 207 299 407 \ndepth_shift: \x09\n"},
    {2, {}, kNoise + kLinear, ZV_PIXEL_TYPE_LINEAR_DEPTH},
    {2, {}, kAnchor + kAsMade + kNoiseFrame + kLinear, ZV_PIXEL_TYPE_LINEAR_DEPTH, true},
    {3, {}, kSpatial},
    {3, {"1", "0.3", "160", "1"}, kSpatial, ZV_PIXEL_TYPE_DEPTH, true},
    {4, {}, "diff_scale: 0.1\nweight:     0.4\n"},
    {5,
     {"640", "1480", "0.5", "1", "2", "3", "-4"},
     "dst_width:     640\ndst_height:    1480\nprocess_param: \nscale:         0.5\n"
     "ex_top:        3\nex_bottom:     -4\nex_left:       1\nex_right:      2\n"},
    {6,
     {},
     "anchor_params: \nenable_direction: 1\nlimit_x_th:       70\nlimit_y_th:       30\n"
     "margin_x_th:      6\nmargin_y_th:      6\n"
     "current_filter_params: \nenable_direction: 1\nlimit_x_th:       35\n"
     "limit_y_th:       15\nmargin_x_th:      3\nmargin_y_th:      3\n"},
    {7, {}, "disp_offset: 25\ninvalid_depth: 1202\nfb: 30060\n"},
    {7, {}, "disp_offset: 0\ninvalid_depth: 0\nfb: 0\n", ZV_PIXEL_TYPE_DEPTH, true},
    {7, {}, "disp_offset: 0\ninvalid_depth: 0\nfb: 0\n", ZV_PIXEL_TYPE_DISPARITY},
    {8, {}, kRecord, ZV_PIXEL_TYPE_DISPARITY}};

struct CommasAndGroups : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

TEST(Prints, StayWhateverIsSetForStandardOutput) {
  for (const bool set : {false, true}) {
    for (const Print& print : kPrints) {
      const auto filter = FilterFactory::getInstance()->createFilter(print.index);
      std::vector<const char*> values = print.configuration;
      if (!values.empty()) filter->update_filter_config(values.size(), values.data(), nullptr);
      devhost::FrameTraits traits = lively_frame(640, 400, print.pixel_type, 0);
      traits.disparity.baseline = 50.1f;
      traits.disparity.zpd = 1234.567;
      traits.disparity.zpps = 0.25;
      const devhost::Frame frame = devhost::make_frame(traits);
      FilterDriver::output_of([&] { devhost::Frame(filter->filter_process(frame.get(), nullptr)); });
      if (print.reset) filter->reset_filter(nullptr);
      std::ios before(nullptr);
      before.copyfmt(std::cout);
      if (set) {
        std::cout.imbue(std::locale(std::locale::classic(), new CommasAndGroups));
        std::cout << std::hex << std::showbase << std::showpos << std::scientific << std::setprecision(2);
      }
      const std::string text = FilterDriver::output_of([&] { filter->print_key_params(); });
      std::cout.copyfmt(before);
      EXPECT_EQ(text, print.text);
    }
  }
}

}  // namespace
}  // namespace filterprocessor
