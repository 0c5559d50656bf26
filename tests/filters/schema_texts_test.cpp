// Schema texts are read by hosts and scripts, so they stay to the letter.
#include <map>

#include "kit/plugin/schema.h"
#include "support/filter_driver.h"

namespace filterprocessor {
namespace {

const std::map<std::string, std::string> kSchemas = {
    {"DisparityTransform",
     "max_depth, uint32_t, 1, 65535, 1, 10000, value max depth\n"
     "min_depth, uint32_t, 1, 65535, 1, 100, value min depth\n"
     "depth_uint, float, 0.001, 10.0, 0.001, 1.0, value depth uint"},
    {"HoleFillingFilter",
     "hole_filling_mode, integer, 0, 2, 1, 0, "
     "ZV_HOLE_FILL_TOP/ZV_HOLE_FILL_NEAREST/ZV_HOLE_FILL_FAREST\n"},
    {"NoiseRemovalFilter",
     "max_size, integer, 1, 1000, 1, 80, Max size of noise pixels\n"
     "min_diff, integer, 1, 10000, 1, 256, difference threshold between neighbor pixels\n"
     "width, integer, 1, 1280, 1, 848, depth map width of the above 2 parameters corresponded\n"
     "height, integer, 1, 800, 1, 480, depth map height of the above 2 parameters corresponded"},
    {"SpatialAdvancedFilter",
     "magnitude, integer, 1, 5, 1, 1, number of filtering iterations\n"
     "alpha, float, 0.1, 1, 0.01, 0.5, weight for the current pixel value\n"
     "disp_diff, integer, 1, 10000, 1, 160, threshold for non-edge transitions\n"
     "radius, integer, 0, 8, 1, 1, radius of holes in depth image to be filled"},
    {"TemporalFilter",
     "diff_scale, float, 0.1, 1, 0.01, 0.1, difference scale for neighbour frame\n"
     "weight, float, 0.1, 1, 0.01, 0.4, weight for the current frame value"},
    {"DepthResize",
     "dst_width, integer, 1, 65535, 1, 1280, target width of depth frame\n"
     "dst_height, integer, 1, 65535, 1, 720, target height of depth frame\n"
     "scale, float, 0.01, 50, 0.01, 1, scaling ratio of the target frame to the original frame\n"
     "ex_left, integer, -640, 640, 1, 0, extension on the left of the frame\n"
     "ex_right, integer,-640, 640, 1, 0, extension on the right of the frame\n"
     "ex_top, integer, -400, 400, 1, 0, extension on the top of the frame\n"
     "ex_bottom, integer, -400, 400, 1, 0, extension on the bottom of the frame"},
    {"EdgeNoiseRemovalFilter",
     "margin_x_th, integer, 1, 640, 1, 6, Horizontal threshold settings \n"
     "margin_y_th, integer, 1, 400, 1, 6, Vertical threshold settings\n"
     "limit_x_th, integer, 1, 640, 1, 70, Maximum horizontal threshold\n"
     "limit_y_th, integer, 1, 400, 1, 30, Maximum vertical threshold\n"
     "enable_vertical_direction, bool, 0, 1, 1, 0, whether vertical threshold is enable or not\n"
     "width, integer, 1, 1280, 1, 1280, depth map width of the above parameters corresponded\n"
     "height, integer, 1, 800, 1, 800, depth map height of the above parameters corresponded"},
    {"HardwareD2DCorrectionFilter", ""},
    {"OpenNIDisparityTransform",
     "max_depth, uint32_t, 1, 65535, 1, 10000, value max depth\n"
     "min_depth, uint32_t, 1, 65535, 1, 100, value min depth\n"
     "depth_uint, float, 0.001, 10.0, 0.001, 1.0, value depth uint\n"
     "dst_width, integer, 0, 65535, 1, 0, target width of depth frame\n"
     "dst_height, integer, 0, 65535, 1, 0, target height of depth frame\n"
     "scale, float, 0.01, 50, 0.01, 1, scaling ratio of the target frame to the original frame\n"
     "x_cut, integer, 0, 65535, 1, 0, the starting coordinate for cropping in the x direction of the "
     "frame\n"
     "y_cut, integer, 0, 65535, 1, 0, the starting coordinate for cropping in the y direction of the "
     "frame of "
     "the frame\n"
     "x_set, integer, 0, 65535, 1, 0, the length that needs to be set to 0 in the x direction of the "
     "frame\n"
     "y_set, integer, 0, 65535, 1, 0, the length that needs to be set to 0 in the y direction of the "
     "frame"},
};

TEST(SchemaTexts, StayToTheLetterAndTheirDefaultsAreAccepted) {
  EXPECT_EQ(std::int32_t(kSchemas.size()), zv_get_filter_count());
  for (const auto& [name, text] : kSchemas) {
    FilterDriver filter(name);
    EXPECT_EQ(filter.schema(), text);
    std::vector<std::string> defaults;
    for (const kit::SchemaParameter& parameter : kit::parse_schema(text))
      defaults.push_back(parameter.default_value);
    EXPECT_EQ(filter.update(defaults), kNoError) << name;
  }
}

}  // namespace
}  // namespace filterprocessor
