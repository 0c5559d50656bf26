#include "kit/filter/filter_effects.h"

#include <initializer_list>

#include "kit/common/text.h"

namespace kit {

namespace {

using Values = std::optional<std::map<std::string, std::string>>;

double number(const Values& values, const char* key, double otherwise) {
  if (!values || !values->contains(key)) return otherwise;
  return parse_number(values->at(key)).value_or(otherwise);
}

void note_given(const Values& values, std::initializer_list<const char*> keys, const char* condition,
                std::vector<std::string>& notes) {
  std::vector<std::string> given;
  for (const char* key : keys) {
    if (values && values->contains(key)) given.emplace_back(key);
  }
  if (!given.empty()) {
    notes.push_back(
        concat(join(given, " and "), given.size() == 1 ? " has" : " have", " no effect ", condition));
  }
}

std::string pixel_type_name(std::int32_t type) {
  switch (type) {
    case ZV_PIXEL_TYPE_DEPTH:
      return "depth";
    case ZV_PIXEL_TYPE_DISPARITY:
      return "disparity";
    case ZV_PIXEL_TYPE_LINEAR_DEPTH:
      return "linear depth";
    default:
      return concat("type ", type);
  }
}

}  // namespace

std::vector<std::string> missing_effects(std::string_view filter, const Values& values,
                                         std::int32_t pixel_type, bool corrected) {
  std::vector<std::string> notes;
  const std::string these =
      concat("these are ", pixel_type_name(pixel_type), " frames, which it hands through");
  const bool disparity = pixel_type == ZV_PIXEL_TYPE_DISPARITY;
  if ((filter == "DisparityTransform" || filter == "OpenNIDisparityTransform") && !disparity) {
    notes.push_back(these + "; give --camera or --pixel-type disparity");
    return notes;
  }
  if (filter == "HardwareD2DCorrectionFilter") {
    if (pixel_type != ZV_PIXEL_TYPE_DEPTH) {
      notes.push_back(these);
    } else if (!corrected) {
      notes.push_back(concat("these frames carry no disparity correction (metadata item ",
                             +ZV_METADATA_DISPARITY_CORRECTION,
                             "), so it hands them through; give --camera with one"));
    }
  }
  // As it is made, the filter takes both directions.
  if (filter == "EdgeNoiseRemovalFilter" && number(values, "enable_vertical_direction", 0) == 0)
    note_given(values, {"margin_y_th", "limit_y_th"}, "without enable_vertical_direction=1", notes);
  if (filter == "SpatialAdvancedFilter" && disparity && number(values, "magnitude", 1) > 1)
    note_given(values, {"magnitude"}, "on disparity frames, which it goes over once", notes);
  if (filter == "OpenNIDisparityTransform" &&
      (number(values, "dst_width", 0) == 0 || number(values, "dst_height", 0) == 0)) {
    note_given(values, {"dst_width", "dst_height", "scale", "x_cut", "y_cut", "x_set", "y_set"},
               "unless dst_width and dst_height are both above 0", notes);
  }
  return notes;
}

std::optional<ExemptValues> exempt_values(std::string_view filter, const Values& values,
                                          std::int32_t pixel_type) {
#if !defined(__aarch64__)
  // The vector instructions of the other processors take such numbers for negative ones.
  if (filter == "SpatialAdvancedFilter")
    return ExemptValues{32768, "are left as they are, since it smooths values up to 32767"};
#endif
  const double smallest_neighbour = pixel_type == ZV_PIXEL_TYPE_DISPARITY ? 2 : 1;
  if (filter == "HoleFillingFilter" && number(values, "hole_filling_mode", 0) == smallest_neighbour)
    return ExemptValues{65535, "are taken for holes, since that value stands for no neighbour"};
  return std::nullopt;
}

}  // namespace kit
