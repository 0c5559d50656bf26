#include "kit/texts/filter_texts.h"

#include <algorithm>

#include "kit/common/text.h"

namespace kit {

namespace {

constexpr std::string_view kAsDefaults = "As with its defaults.";
constexpr std::string_view kDisparitySteps = "1/256 pixel of disparity";

constexpr ParameterText kDepthLimits[] = {
    {.name = "max_depth",
     .unit = "mm",
     .meaning = "Depths beyond it become holes.",
     .direction = "larger sees farther"},
    {.name = "min_depth",
     .unit = "mm",
     .meaning = "Depths below it become holes.",
     .direction = "larger removes more of what is near"},
    {.name = "depth_uint",
     .unit = "mm a unit",
     .meaning =
         "What one unit of the resulting depth stands for: 1 is a millimetre, 0.1 a tenth. 16 bits "
         "reach 65535 units, so 0.1 ends at 6.5 m.",
     .direction = "larger is coarser and reaches farther"},
};

constexpr ChoiceText kFillModes[] = {
    {0, "top", "the pixel above, down the whole column"},
    {1, "nearest", "the nearest to the camera of the pixels above, below and to the left"},
    {2, "farthest", "the farthest of them, which suits the shadows behind edges"},
};
constexpr ParameterText kHoleFilling[] = {
    {.name = "hole_filling_mode",
     .unit = "",
     .meaning = "Which neighbour a hole takes its value from. Disparity frames are understood: nearest "
                "is nearest there too.",
     .choices = kFillModes},
};

constexpr ParameterText kNoiseRemoval[] = {
    {.name = "max_size",
     .unit = "pixels at the reference size",
     .meaning =
         "Connected regions of at most so many pixels are removed. It grows and shrinks with the "
         "frame's area; where fewer than 4 pixels of the frame are left of it, a larger limit that "
         "suits the frame's size is taken.",
     .direction = "larger removes more"},
    {.name = "min_diff",
     .unit = kDisparitySteps,
     .meaning =
         "The largest difference at which two neighbours still belong together; 256 is a whole "
         "pixel of disparity, so in depth it grows with the square of the distance, up to 3.5 m. In "
         "linear depth frames it is in units of depth, for each started 512 units of distance.",
     .direction = "larger joins more, so it removes less"},
    {.name = "width",
     .unit = "pixels",
     .meaning = "Width of the reference size, for which max_size is meant. This is not the size of the "
                "frames: those may have any size and are compared with this one.",
     .direction = "larger removes less"},
    {.name = "height",
     .unit = "pixels",
     .meaning = "Height of the reference size.",
     .direction = "larger removes less"},
};

constexpr ParameterText kSpatial[] = {
    {.name = "magnitude",
     .unit = "passes",
     .meaning = "How often the frame is gone over; disparity frames always once.",
     .direction = "larger smooths more and takes longer"},
    {.name = "alpha",
     .unit = "",
     .meaning = "Weight of a pixel against its neighbour. 1 is off, 0.1 strongest. On 64-bit Arm it is "
                "always 0.5.",
     .direction = "larger smooths less"},
    {.name = "disp_diff",
     .unit = kDisparitySteps,
     .meaning = "Neighbours that differ by more are an edge and stay apart; 256 is a whole pixel of "
                "disparity, so in depth it grows with the square of the distance, up to 3.5 m. In "
                "linear depth frames it is in units of depth, for each started 512 units of distance.",
     .direction = "larger smooths across higher steps"},
    {.name = "radius",
     .unit = "pixels",
     .meaning = "Holes along a row are filled by radius - 1 pixels from either side in each pass, so 0 "
                "and 1 fill nothing and 8 closes gaps of 14.",
     .direction = "larger fills more"},
};

constexpr ParameterText kTemporal[] = {
    {.name = "diff_scale",
     .unit = "fraction of the depth",
     .meaning = "A pixel that changes by more since the last frame is taken as it comes: something has "
                "moved.",
     .direction = "larger steadies more, and what moves leaves trails"},
    {.name = "weight",
     .unit = "",
     .meaning = "Weight of the new frame against the last result. 1 is off, 0.1 strongest.",
     .direction = "larger steadies less and follows faster"},
};

constexpr ParameterText kResize[] = {
    {.name = "dst_width",
     .unit = "pixels",
     .meaning = "Width of the result. It has to be the frame's width x scale + ex_left + ex_right, "
                "truncated; without dst_width and dst_height chains work both out."},
    {.name = "dst_height",
     .unit = "pixels",
     .meaning = "Height of the result: the frame's height x scale + ex_top + ex_bottom, truncated."},
    {.name = "scale",
     .unit = "",
     .meaning = "Result pixels for one of the frame, from 0.1 up. Pixels are picked, not mixed.",
     .direction = "larger gives a larger frame"},
    {.name = "ex_left",
     .unit = "pixels of the result",
     .meaning = "Columns of holes added on the left; below 0: columns cut off."},
    {.name = "ex_right", .unit = "pixels of the result", .meaning = "The same on the right."},
    {.name = "ex_top", .unit = "pixels of the result", .meaning = "The same at the top."},
    {.name = "ex_bottom", .unit = "pixels of the result", .meaning = "The same at the bottom."},
};

constexpr ChoiceText kSwitch[] = {{0, "off", "left and right only"}, {1, "on", "top and bottom too"}};
constexpr ParameterText kEdgeNoise[] = {
    {.name = "margin_x_th",
     .unit = "pixels at the reference size",
     .meaning = "So many pixels become holes at either end of a row's valid part. At most limit_x_th. "
                "At the frame's size it is truncated, so small frames may have 0.",
     .direction = "larger removes more"},
    {.name = "margin_y_th",
     .unit = "pixels at the reference size",
     .meaning = "The same for columns. At most limit_y_th.",
     .direction = "larger removes more"},
    {.name = "limit_x_th",
     .unit = "pixels at the reference size",
     .meaning = "Only where the valid part begins within so many pixels of the left or right border.",
     .direction = "larger reaches farther into the frame"},
    {.name = "limit_y_th",
     .unit = "pixels at the reference size",
     .meaning = "The same for the top and bottom borders.",
     .direction = "larger reaches farther into the frame"},
    {.name = "enable_vertical_direction",
     .unit = "",
     .meaning = "Whether columns are cut too.",
     .choices = kSwitch},
    {.name = "width",
     .unit = "pixels",
     .meaning = "Width of the reference size, for which the values above are meant. This is not the "
                "size of the frames: those may have any size and are compared with this one.",
     .direction = "larger removes less"},
    {.name = "height",
     .unit = "pixels",
     .meaning = "Height of the reference size.",
     .direction = "larger removes less"},
};

constexpr ParameterText kOpenNi[] = {
    kDepthLimits[0],
    kDepthLimits[1],
    kDepthLimits[2],
    {.name = "dst_width",
     .unit = "pixels",
     .meaning = "Width of the result. With 0 here or in dst_height the frame keeps its size, and the "
                "values below don't count."},
    {.name = "dst_height", .unit = "pixels", .meaning = "Height of the result."},
    {.name = "scale",
     .unit = "",
     .meaning = "Result pixels for one of the frame, from 0.1 up. Pixels are picked, not mixed.",
     .direction = "larger shows a smaller part of the frame"},
    {.name = "x_cut", .unit = "pixels of the frame", .meaning = "Column where the result begins."},
    {.name = "y_cut", .unit = "pixels of the frame", .meaning = "Row where the result begins."},
    {.name = "x_set",
     .unit = "pixels of the result",
     .meaning = "So many columns at the left and at the right become holes.",
     .direction = "larger removes more"},
    {.name = "y_set",
     .unit = "pixels of the result",
     .meaning = "So many rows at the top and at the bottom become holes.",
     .direction = "larger removes more"},
};

constexpr FilterText kFilters[] = {
    {.name = "DisparityTransform",
     .summary = "turns disparity frames into depth frames",
     .use = "First in a chain for a stereo camera or one with a projector whose frames are disparity. "
            "Frames that are depth already pass unchanged.",
     .avoid = "NoiseRemovalFilter and SpatialAdvancedFilter work on disparity too. In tenths of a "
              "millimetre they do better before it, since depth above 32767 units is not smoothed.",
     .as_made = "Without limits: it keeps every depth that 16 bits hold, where its defaults keep 100 mm "
                "to 10 m.",
     .parameters = kDepthLimits},
    {.name = "HoleFillingFilter",
     .summary = "gives holes the value of a neighbour",
     .use = "Last, where a program needs a value at every pixel.",
     .avoid = "Where a wrong depth is worse than none: it fills whatever size a hole has. What has no "
              "valid pixel above, below or to the left stays, such as a left border that is blind from "
              "top to bottom. Small holes are better closed by SpatialAdvancedFilter's radius.",
     .as_made = kAsDefaults,
     .parameters = kHoleFilling},
    {.name = "NoiseRemovalFilter",
     .summary = "removes small isolated regions",
     .use = "Early, after the conversion to depth: specks of wrong depth float before or behind "
            "surfaces.",
     .avoid = "Where small or thin things matter: a cable seen as a broken line is a row of specks.",
     .as_made = kAsDefaults,
     .parameters = kNoiseRemoval},
    {.name = "SpatialAdvancedFilter",
     .summary = "smooths within a frame and keeps edges",
     .use = "Nearly always: it lowers noise without delay. With a radius above 1 it also closes small "
            "holes.",
     .avoid = "Fine relief below disp_diff is smoothed away. On x86 pixel values above 32767 count as "
              "holes; with depth in tenths of a millimetre that is from 3.3 m on.",
     .as_made = kAsDefaults,
     .parameters = kSpatial},
    {.name = "TemporalFilter",
     .summary = "steadies each pixel from frame to frame",
     .use = "Where camera and scene are still, or move slowly.",
     .avoid = "With a moving camera: each pixel then mixes the depths of different points. It remembers "
              "the last result, so one instance serves one stream.",
     .as_made = kAsDefaults,
     .parameters = kTemporal},
    {.name = "DepthResize",
     .summary = "scales, extends and cuts frames",
     .use = "To make frames smaller for what follows, or to fit them to another size.",
     .avoid = "Before NoiseRemovalFilter and the smoothing filters, which do better with all pixels; "
              "after them it costs less to go on.",
     .as_made = "It takes no frame until it is given values. In a chain it gets those that keep the "
                "frame's size.",
     .parameters = kResize},
    {.name = "EdgeNoiseRemovalFilter",
     .summary = "removes the fringe where valid depth begins beside the borders",
     .use = "Where the outermost valid pixels of a camera are worse than the rest.",
     .avoid = "Where they are not: it then only costs coverage. It looks at the frame's borders, not at "
              "the edges of things.",
     .as_made = "It also cuts columns; its default for enable_vertical_direction is off.",
     .parameters = kEdgeNoise},
    {.name = "HardwareD2DCorrectionFilter",
     .summary = "turns the depth that a camera's own conversion gives to empty disparities into holes",
     .use = "For depth frames that carry a disparity correction (metadata item 32). Others pass "
            "unchanged.",
     .avoid = "With disparity frames: DisparityTransform minds the correction itself.",
     .as_made = "As always: it has no parameters, and the frames say what it needs."},
    {.name = "OpenNIDisparityTransform",
     .summary = "turns disparity frames of pack mode 1 into depth and can scale and cut them",
     .use = "For stereo cameras whose codes fall with the disparity, at another size in one go.",
     .avoid = "For any other coding: it reads all codes as those of pack mode 1. DisparityTransform "
              "reads what the frame says.",
     .as_made = kAsDefaults,
     .parameters = kOpenNi},
};

template <typename Text>
const Text* find(std::span<const Text> texts, std::string_view name) {
  const auto found =
      std::find_if(texts.begin(), texts.end(), [&](const Text& text) { return text.name == name; });
  return found != texts.end() ? &*found : nullptr;
}

}  // namespace

std::span<const FilterText> filter_texts() { return kFilters; }

const FilterText* text_of(std::string_view filter) { return find(filter_texts(), filter); }

const ParameterText* text_of(std::string_view filter, std::string_view parameter) {
  const FilterText* const text = text_of(filter);
  return text != nullptr ? find(text->parameters, parameter) : nullptr;
}

std::string names_of(std::span<const ChoiceText> choices) {
  std::vector<std::string> names;
  for (const ChoiceText& choice : choices) names.push_back(concat(choice.value, ' ', choice.name));
  return join(names, ", ");
}

}  // namespace kit
