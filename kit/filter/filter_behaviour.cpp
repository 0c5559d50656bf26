// What the filters do that their schemas don't say.
#include "kit/filter/filter_behaviour.h"

#include <algorithm>

#include "filterprocessor/host.h"
#include "kit/common/text.h"

namespace kit {

namespace {

enum class Geometry { unused, of_disparity, unless_linear };

struct Traits {
  std::string_view filter;
  Geometry geometry = Geometry::unused;
  bool has_history = false;
  bool ignores_configuration = false;
  double least_scale = 0;      // the schema's is smaller
  bool lone_min_depth = true;  // taken
};

constexpr Traits kTraits[] = {
    {.filter = "DisparityTransform", .geometry = Geometry::of_disparity, .lone_min_depth = false},
    {.filter = "HoleFillingFilter"},
    {.filter = "NoiseRemovalFilter", .geometry = Geometry::unless_linear},
    {.filter = "SpatialAdvancedFilter", .geometry = Geometry::unless_linear},
    {.filter = "TemporalFilter", .has_history = true},
    {.filter = "DepthResize", .least_scale = 0.1},
    {.filter = "EdgeNoiseRemovalFilter"},
    // Used with a correction, which no image file carries.
    {.filter = "HardwareD2DCorrectionFilter", .ignores_configuration = true},
    {.filter = "OpenNIDisparityTransform",
     .geometry = Geometry::of_disparity,
     .least_scale = 0.1,
     .lone_min_depth = false},
};
// Of a filter that is not known: it may need anything.
constexpr Traits kOther = {.filter = "", .geometry = Geometry::unless_linear, .has_history = true};

const Traits& traits_of(std::string_view filter) {
  const auto* const row = std::find_if(std::begin(kTraits), std::end(kTraits),
                                       [&](const Traits& traits) { return traits.filter == filter; });
  return row != std::end(kTraits) ? *row : kOther;
}

}  // namespace

bool ignores_configuration(std::string_view filter) { return traits_of(filter).ignores_configuration; }

bool uses_geometry(std::string_view filter, int pixel_type) {
  switch (traits_of(filter).geometry) {
    case Geometry::unused:
      return false;
    case Geometry::of_disparity:
      return pixel_type == ZV_PIXEL_TYPE_DISPARITY;
    default:
      return pixel_type != ZV_PIXEL_TYPE_LINEAR_DEPTH;
  }
}

bool has_history(std::string_view filter) { return traits_of(filter).has_history; }

ValueRange value_range(std::string_view filter, const SchemaParameter& parameter) {
  ValueRange range = {parse_number(parameter.min).value_or(0), parse_number(parameter.max).value_or(0)};
  if (parameter.name == "scale") range.min = std::max(range.min, traits_of(filter).least_scale);
  return range;
}

bool changes_size(std::string_view filter) { return traits_of(filter).least_scale > 0; }

std::optional<std::map<std::string, std::string>> derived_values(
    std::string_view filter, const std::optional<std::map<std::string, std::string>>& values,
    std::uint32_t width, std::uint32_t height) {
  if (filter != "DepthResize" ||
      (values && (values->contains("dst_width") || values->contains("dst_height")))) {
    return std::nullopt;
  }
  auto all = values.value_or(std::map<std::string, std::string>());
  const auto number = [&](const char* key, float otherwise) {
    const auto found = all.find(key);
    return found == all.end() ? otherwise : static_cast<float>(parse_number(found->second).value_or(0));
  };
  // In 32 bits, as the filter checks it.
  const auto target = [&](std::uint32_t size, const char* before, const char* after) {
    const float extent =
        static_cast<float>(size) * number("scale", 1) + number(before, 0) + number(after, 0);
    return std::to_string(static_cast<std::int64_t>(std::clamp(extent, 0.0f, 1e6f)));
  };
  all["dst_width"] = target(width, "ex_left", "ex_right");
  all["dst_height"] = target(height, "ex_top", "ex_bottom");
  return all;
}

std::vector<std::vector<std::string>> configurations(std::string_view filter,
                                                     const std::vector<SchemaParameter>& schema,
                                                     const std::vector<std::string>& values) {
  if (traits_of(filter).lone_min_depth) return {values};
  std::vector<std::string> other = values;
  for (std::size_t i = 0; i < schema.size(); ++i) {
    if (schema[i].name == "max_depth")
      other[i] = values[i] == schema[i].max ? schema[i].min : schema[i].max;
  }
  return {other, values};
}

namespace {

double number(const FailedCall& call, const char* key) {
  const auto found = call.values.find(key);
  return found == call.values.end() ? 0 : parse_number(found->second).value_or(0);
}

std::string size_text(const hosts::FrameTraits& frame) { return concat(frame.width, 'x', frame.height); }

std::string resize_hint(const FailedCall& call) {
  std::map<std::string, std::string> values = call.values;
  values.erase("dst_width");
  values.erase("dst_height");
  const auto derived = derived_values("DepthResize", values, call.frame.width, call.frame.height);
  return concat(
      "; dst_width has to be the frame's width x scale + ex_left + ex_right and dst_height its "
      "height x scale + ex_top + ex_bottom, both truncated: ",
      derived->at("dst_width"), " and ", derived->at("dst_height"), " for frames of ",
      size_text(call.frame), " (or leave both out)");
}

std::string margin_hint(const FailedCall& call) {
  const bool vertical = number(call, "enable_vertical_direction") != 0;
  for (const char* axis : {"x", "y"}) {
    if (*axis == 'y' && !vertical) break;
    const std::string margin = concat("margin_", axis, "_th"), limit = concat("limit_", axis, "_th");
    if (number(call, margin.c_str()) > number(call, limit.c_str()))
      return concat("; ", margin, ' ', call.values.at(margin), " exceeds its limit, ", limit, ' ',
                    call.values.at(limit));
  }
  return "";
}

std::string small_hint(const FailedCall& call) {
  return concat("; frames of ", size_text(call.frame), " are too small beside its width and height, ",
                number(call, "width"), 'x', number(call, "height"));
}

/// Of the filters that turn differences of disparity into such of depth.
std::string geometry_hint(const FailedCall& call) {
  const hosts::FrameTraits& frame = call.frame;
  if (frame.pixel_type != ZV_PIXEL_TYPE_DISPARITY && !(frame.value_scale > 0))
    return concat("; the value scale is ", frame.value_scale, "; expected a number above 0");
  const double product = frame.disparity.fx * double{frame.disparity.baseline};
  if (frame.pixel_type == ZV_PIXEL_TYPE_DEPTH && !(product > 0)) {
    return concat("; baseline x fx is ", product,
                  "; expected a number above 0 (--camera, or --baseline and --fx)");
  }
  return small_hint(call);
}

}  // namespace

std::string failure_hint(std::string_view filter, std::string_view message, const FailedCall& call) {
  const hosts::FrameTraits& frame = call.frame;
  if (filter == "EdgeNoiseRemovalFilter")
    return message == "invalid params" ? small_hint(call) : margin_hint(call);
  if (message == "incorrect config schema" && filter == "DepthResize") return resize_hint(call);
  if (message == "invalid params" || message == "update depth diff lut error") return geometry_hint(call);
  if (message == "Unsupported disparity data pack type error") {
    return concat("; the camera's packMode is ", +frame.disparity.packMode, "; expected ",
                  frame.disparity.isDualCamera != 0 ? "1 to 3 for two viewpoints" : "1, 2 or 4 for one");
  }
  if (message == "spatial advanced filter error")
    return concat("; frames of ", size_text(frame), " are too large; a side has at most 65535 pixels");
  if (message == "depth resize error" || message == "Frame sampling process error") {
    return concat("; a frame of ", number(call, "dst_width"), 'x', number(call, "dst_height"),
                  " has no pixels or needs 4 GiB and more");
  }
  return "";
}

}  // namespace kit
