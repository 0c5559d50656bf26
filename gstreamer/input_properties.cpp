#include "input_properties.h"

#include <cstdint>
#include <limits>

#include <gst/gst.h>

namespace zvgst {

namespace {

constexpr double kLarge = 1e9;

enum class Kind { pixel_type, integer, real, flag };

struct Property {
  const char* name;
  const char* blurb;
  Kind kind;
  double min, max;
  double (*get)(const zvf_input& input);
  void (*set)(zvf_input& input, double value);
  bool of_geometry = true;
};

#define FIELD(field)                                                       \
  [](const zvf_input& input) { return static_cast<double>(input.field); }, \
      [](zvf_input& input, double value) { input.field = static_cast<decltype(input.field)>(value); }

constexpr Property kProperties[kInputProperties] = {
    {"pixel-type", "What a sample is", Kind::pixel_type, 0, 4, FIELD(pixel_type), false},
    {"value-scale", "Millimetres a unit of depth", Kind::real, 1e-6, 1e6, FIELD(value_scale), false},
    {"bits", "Bits of a sample that count", Kind::integer, 1, 16, FIELD(bits), false},
    {"packed", "The low 4 bits of a disparity code are a confidence", Kind::flag, 0, 1, FIELD(packed),
     false},
    {"correction",
     "Disparity correction that the camera applied, pixels; for HardwareD2DCorrectionFilter",
     Kind::integer, INT32_MIN, INT32_MAX, [](const zvf_input& input) { return double(input.correction); },
     [](zvf_input& input, double value) {
       input.correction = static_cast<std::int64_t>(value);
       input.has_correction = true;
     },
     false},
    {"baseline", "Distance of the two viewpoints, millimetres; for steps that need the camera's geometry",
     Kind::real, 0, kLarge, FIELD(geometry.baseline)},
    {"fx", "Focal length, pixels; for steps that need the camera's geometry", Kind::real, 0, kLarge,
     FIELD(geometry.fx)},
    {"zpd", "Distance of the reference plane, millimetres; cameras with a projector", Kind::real, 0,
     kLarge, FIELD(geometry.zpd)},
    {"zpps", "Pixel size on the reference plane, millimetres; cameras with a projector", Kind::real, 0,
     kLarge, FIELD(geometry.zpps)},
    {"unit", "Factor from the formula to depth units, 1 for millimetres", Kind::real, 0, kLarge,
     FIELD(geometry.unit)},
    {"min-disparity", "Smallest disparity searched, pixels", Kind::real, -kLarge, kLarge,
     FIELD(geometry.min_disparity)},
    {"disparity-offset", "Added to every disparity, pixels", Kind::real, -kLarge, kLarge,
     FIELD(geometry.disparity_offset)},
    {"invalid-disparity", "Disparity code that marks an invalid pixel", Kind::integer, INT32_MIN,
     INT32_MAX, FIELD(geometry.invalid_disparity)},
    {"integer-bits", "Bits of a disparity code before the point", Kind::integer, 1, 16,
     FIELD(geometry.integer_bits)},
    {"pack-mode", "Layout of a disparity code", Kind::integer, 1, 4, FIELD(geometry.pack_mode)},
    {"dual-camera", "Two cameras; else one and a projector", Kind::flag, 0, 1,
     FIELD(geometry.dual_camera)},
};

#undef FIELD

zvf_input defaults() {
  zvf_input input = zvf_input_of(1, 1);
  zvf_input_set_stereo(&input, 0, 0);
  return input;
}

GType pixel_type_enum() {
  static const GType type = [] {
    static const GEnumValue values[] = {
        {ZVF_DEPTH, "A sample times value-scale is millimetres", "depth"},
        {ZVF_DISPARITY, "A disparity code, which the geometry explains", "disparity"},
        {ZVF_LINEAR_DEPTH, "Depth, treated without geometry", "linear"},
        {0, nullptr, nullptr}};
    return g_enum_register_static("ZvPixelType", values);
  }();
  return type;
}

GParamSpec* spec_of(const Property& p, GParamFlags flags) {
  const double value = p.get(defaults());
  switch (p.kind) {
    case Kind::pixel_type:
      return g_param_spec_enum(p.name, p.name, p.blurb, pixel_type_enum(), static_cast<int>(value),
                               flags);
    case Kind::integer:
      return g_param_spec_int(p.name, p.name, p.blurb, static_cast<int>(p.min), static_cast<int>(p.max),
                              static_cast<int>(value), flags);
    case Kind::flag:
      return g_param_spec_boolean(p.name, p.name, p.blurb, value != 0, flags);
    default:
      return g_param_spec_double(p.name, p.name, p.blurb, p.min, p.max, value, flags);
  }
}

}  // namespace

void install_input_properties(GObjectClass* element) {
  const auto flags =
      static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS | GST_PARAM_MUTABLE_PLAYING);
  for (std::size_t i = 0; i < kInputProperties; ++i)
    g_object_class_install_property(element, static_cast<guint>(i + 1), spec_of(kProperties[i], flags));
}

double default_of(std::size_t property) { return kProperties[property].get(defaults()); }

double number_of(const GValue* value) {
  if (G_VALUE_HOLDS_ENUM(value)) return g_value_get_enum(value);
  if (G_VALUE_HOLDS_INT(value)) return g_value_get_int(value);
  if (G_VALUE_HOLDS_UINT(value)) return g_value_get_uint(value);
  if (G_VALUE_HOLDS_BOOLEAN(value)) return g_value_get_boolean(value) != FALSE ? 1 : 0;
  return g_value_get_double(value);
}

void set_number(GValue* value, double number) {
  if (G_VALUE_HOLDS_ENUM(value)) {
    g_value_set_enum(value, static_cast<int>(number));
  } else if (G_VALUE_HOLDS_INT(value)) {
    g_value_set_int(value, static_cast<int>(number));
  } else if (G_VALUE_HOLDS_UINT(value)) {
    g_value_set_uint(value, static_cast<guint>(number));
  } else if (G_VALUE_HOLDS_BOOLEAN(value)) {
    g_value_set_boolean(value, number != 0);
  } else {
    g_value_set_double(value, number);
  }
}

std::string put_values(const InputValues& values, zvf_input& input) {
  std::optional<double> baseline, fx;
  const char* of_geometry = nullptr;
  for (std::size_t i = 0; i < kInputProperties; ++i) {
    if (!values[i]) continue;
    const Property& property = kProperties[i];
    if (property.of_geometry) of_geometry = property.name;
    if (property.name == std::string("baseline")) baseline = values[i];
    if (property.name == std::string("fx")) fx = values[i];
    // The codes of a camera have as many bits as its samples, so those come first.
    if (!property.of_geometry) property.set(input, *values[i]);
  }
  if (of_geometry == nullptr) return "";
  if (!input.has_geometry) {
    if (!baseline || !fx)
      return std::string(of_geometry) + " is set, which takes baseline (mm) and fx (pixels) as well";
    zvf_input_set_stereo(&input, *baseline, *fx);
  }
  for (std::size_t i = 0; i < kInputProperties; ++i) {
    if (values[i] && kProperties[i].of_geometry) kProperties[i].set(input, *values[i]);
  }
  return "";
}

}  // namespace zvgst
