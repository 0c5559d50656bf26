// What the filters do that their schemas don't say.
#include "kit/plugin/filter_behaviour.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <limits>
#include <optional>

#include "filterprocessor/host.h"
#include "kit/common/text.h"

namespace kit {

namespace {

constexpr double kAny = std::numeric_limits<double>::infinity();

/// The values that a filter takes, where they are not the schema's.
struct Accepted {
  std::string_view filter;
  std::string_view key;
  double min;
  double max;
};

constexpr Accepted kAccepted[] = {
    {"OpenNIDisparityTransform", "scale", 0.1, 50},
    {"OpenNIDisparityTransform", "x_cut", -kAny, kAny},
    {"OpenNIDisparityTransform", "y_cut", -kAny, kAny},
    {"OpenNIDisparityTransform", "x_set", -kAny, kAny},
    {"OpenNIDisparityTransform", "y_set", -kAny, kAny},
    {"NoiseRemovalFilter", "height", 1, 1024},
    {"EdgeNoiseRemovalFilter", "height", 1, 1024},
    {"DepthResize", "scale", 0.1, 50},
    {"DepthResize", "ex_left", -kAny, kAny},
    {"DepthResize", "ex_right", -kAny, kAny},
    {"DepthResize", "ex_top", -kAny, kAny},
    {"DepthResize", "ex_bottom", -kAny, kAny},
};

/// The depth limits of a new filter. While max_depth and depth_uint stay as they are, min_depth stays
/// too.
struct InitialDepthLimits {
  std::string_view filter;
  double max_depth;
  double min_depth;
  double depth_uint;
};

constexpr InitialDepthLimits kInitialDepthLimits[] = {
    {"DisparityTransform", 65535, 0, 1},
    {"OpenNIDisparityTransform", 10000, 100, 1},
};

enum class Geometry { unused, of_disparity, unless_linear };

struct Traits {
  std::string_view filter;
  bool ignores_configuration;
  Geometry geometry;
};

constexpr Traits kTraits[] = {
    {"DisparityTransform", false, Geometry::of_disparity},
    {"HoleFillingFilter", false, Geometry::unused},
    {"NoiseRemovalFilter", false, Geometry::unless_linear},
    {"SpatialAdvancedFilter", false, Geometry::unless_linear},
    {"TemporalFilter", false, Geometry::unused},
    {"DepthResize", false, Geometry::unused},
    {"EdgeNoiseRemovalFilter", false, Geometry::unused},
    // Used with a correction, which no image file carries.
    {"HardwareD2DCorrectionFilter", true, Geometry::unused},
    {"OpenNIDisparityTransform", false, Geometry::of_disparity},
};

template <typename Row, std::size_t count, typename Matches>
const Row* find_row(const Row (&rows)[count], Matches matches) {
  const Row* row = std::find_if(std::begin(rows), std::end(rows), matches);
  return row != std::end(rows) ? row : nullptr;
}

const Traits* traits_of(std::string_view filter) {
  return find_row(kTraits, [&](const Traits& row) { return row.filter == filter; });
}

const InitialDepthLimits* initial_limits_of(std::string_view filter) {
  return find_row(kInitialDepthLimits,
                  [&](const InitialDepthLimits& row) { return row.filter == filter; });
}

/// As the filters compare: float parameters in 32 bits.
bool inside(const SchemaParameter& parameter, double value, double min, double max) {
  if (parameter.type != "float") return value >= min && value <= max;
  const auto narrow = static_cast<float>(value);
  return narrow >= static_cast<float>(min) && narrow <= static_cast<float>(max);
}

double number(const std::string& text) { return parse_number(text).value_or(0); }

std::string range(double min, double max) { return max == kAny ? "any value" : concat(min, " to ", max); }

std::optional<std::string> value_warning(std::string_view filter, const SchemaParameter& parameter,
                                         const std::string& text) {
  const double min = number(parameter.min), max = number(parameter.max), value = number(text);
  const Accepted* row = find_row(
      kAccepted, [&](const Accepted& a) { return a.filter == filter && a.key == parameter.name; });
  const Accepted accepted = row != nullptr ? *row : Accepted{filter, "", min, max};
  const bool in_schema = inside(parameter, value, min, max);
  const bool taken = inside(parameter, value, accepted.min, accepted.max);
  if (in_schema && taken) return std::nullopt;

  const std::string schema_range = parameter.min + " to " + parameter.max;
  std::string line = concat(filter, ": ", parameter.name, "=", text, " is ",
                            in_schema ? "inside" : "outside", " the schema's ", schema_range, "; ");
  if (taken) return line + "the filter takes " + range(accepted.min, accepted.max) + " and will use it";
  const std::string& key = parameter.name;
  const bool limit = initial_limits_of(filter) != nullptr &&
                     (key == "max_depth" || key == "min_depth" || key == "depth_uint");
  line += concat("the filter takes ", range(accepted.min, accepted.max), " and will ");
  return line +
         (limit ? "ignore max_depth, min_depth and depth_uint together, without an error" : "refuse it");
}

std::optional<std::string> lone_min_depth_warning(std::string_view filter,
                                                  const std::vector<SchemaParameter>& schema,
                                                  const std::vector<std::string>& values) {
  const InitialDepthLimits* initial = initial_limits_of(filter);
  if (initial == nullptr) return std::nullopt;
  const auto value_of = [&](std::string_view key) {
    for (std::size_t i = 0; i < schema.size(); ++i) {
      if (schema[i].name == key) return number(values[i]);
    }
    return -1.0;
  };
  const bool rest_unchanged =
      value_of("max_depth") == initial->max_depth &&
      static_cast<float>(value_of("depth_uint")) == static_cast<float>(initial->depth_uint);
  const double min_depth = value_of("min_depth");
  if (!rest_unchanged || min_depth == initial->min_depth || min_depth < 1 || min_depth > 65535) {
    return std::nullopt;
  }
  return concat(filter, ": min_depth=", min_depth, " changes alone, max_depth=", initial->max_depth,
                " and depth_uint=", initial->depth_uint,
                " being the filter's initial values; the filter will ",
                "drop it without an error and keep min_depth ", initial->min_depth);
}

}  // namespace

bool ignores_configuration(std::string_view filter) {
  const Traits* traits = traits_of(filter);
  return traits != nullptr && traits->ignores_configuration;
}

bool uses_geometry(std::string_view filter, int pixel_type) {
  const Traits* traits = traits_of(filter);
  switch (traits != nullptr ? traits->geometry : Geometry::unless_linear) {
    case Geometry::unused:
      return false;
    case Geometry::of_disparity:
      return pixel_type == ZV_PIXEL_TYPE_DISPARITY;
    default:
      return pixel_type != ZV_PIXEL_TYPE_LINEAR_DEPTH;
  }
}

std::string_view failure_hint(std::string_view filter, std::string_view message) {
  if (filter != "DepthResize" || message != "incorrect config schema") return "";
  return "; dst_width has to be the frame's width x scale + ex_left + ex_right and dst_height its height "
         "x scale + ex_top + ex_bottom, both truncated";
}

std::vector<std::string> configuration_warnings(std::string_view filter,
                                                const std::vector<SchemaParameter>& schema,
                                                const std::vector<std::string>& values) {
  std::vector<std::string> warnings;
  for (std::size_t i = 0; i < schema.size() && i < values.size(); ++i) {
    if (auto warning = value_warning(filter, schema[i], values[i]))
      warnings.push_back(*std::move(warning));
  }
  if (auto warning = lone_min_depth_warning(filter, schema, values))
    warnings.push_back(*std::move(warning));
  return warnings;
}

}  // namespace kit
