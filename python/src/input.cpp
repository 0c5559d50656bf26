#include "input.h"

#include <limits>
#include <optional>
#include <string>
#include <type_traits>

#include "failure.h"
#include "kit/frame/camera_file.h"
#include "library/chain.h"

namespace py = pybind11;

namespace zvpython {

namespace {

template <typename Input, typename Visit>
void visit_own(Input& input, const Visit& visit) {
  visit("bits", input.bits);
  visit("packed", input.packed);
  visit("value_scale", input.value_scale);
}

template <typename Geometry, typename Visit>
void visit_geometry(Geometry& geometry, const Visit& visit) {
  visit("baseline", geometry.baseline);
  visit("fx", geometry.fx);
  visit("zpd", geometry.zpd);
  visit("zpps", geometry.zpps);
  visit("unit", geometry.unit);
  visit("min_disparity", geometry.min_disparity);
  visit("disparity_offset", geometry.disparity_offset);
  visit("invalid_disparity", geometry.invalid_disparity);
  visit("integer_bits", geometry.integer_bits);
  visit("code_bits", geometry.bits);
  visit("pack_mode", geometry.pack_mode);
  visit("dual_camera", geometry.dual_camera);
}

/// Nothing where the field is missing or None.
std::optional<py::object> field_of(const py::dict& fields, const char* name) {
  if (!fields.contains(name)) return std::nullopt;
  py::object value = fields[name];
  if (value.is_none()) return std::nullopt;
  return value;
}

template <typename Number>
void read(const py::dict& fields, const char* name, Number& number) {
  const auto value = field_of(fields, name);
  if (!value) return;
  try {
    if constexpr (std::is_floating_point_v<Number> || std::is_same_v<Number, bool>) {
      number = static_cast<Number>(
          value->cast<std::conditional_t<std::is_same_v<Number, bool>, bool, double>>());
    } else {
      number = narrow<Number>(name, value->cast<std::int64_t>());
    }
  } catch (const std::invalid_argument& problem) {
    refuse_input(name, problem.what());
  } catch (const py::cast_error&) {
    refuse_input(name, kit::concat(name, " is ", std::string(py::repr(*value)), "; expected ",
                                   std::is_same_v<Number, bool>       ? "True or False"
                                   : std::is_floating_point_v<Number> ? "a number"
                                                                      : "a whole number"));
  }
}

void read_pixel_type(const py::dict& fields, zvf_input& input) {
  const auto value = field_of(fields, "pixel_type");
  if (!value) return;
  const std::string name = py::str(*value);
  const auto type = kit::parse_pixel_type(name);
  if (!type)
    refuse_input("pixel_type",
                 kit::concat("pixel_type is ", name, "; expected depth, disparity or linear"));
  input.pixel_type = *type;
}

void read_geometry(const py::dict& fields, zvf_input& input) {
  int given = 0;
  visit_geometry(input.geometry,
                 [&](const char* name, auto&) { given += field_of(fields, name) ? 1 : 0; });
  if (given == 0) return;
  for (const char* needed : {"baseline", "fx"}) {
    if (!field_of(fields, needed))
      refuse_input(needed,
                   kit::concat(needed, " is missing; the camera's geometry needs baseline and fx"));
  }
  zvf_input_set_stereo(&input, 0, 0);
  visit_geometry(input.geometry, [&](const char* name, auto& number) { read(fields, name, number); });
}

void read_intrinsics(const py::dict& fields, zvf_input& input) {
  const auto value = field_of(fields, "intrinsics");
  if (!value) return;
  try {
    const auto numbers = py::tuple(*value);
    if (numbers.size() != 4) throw py::cast_error();
    const auto number = [&](std::size_t i) { return static_cast<float>(numbers[i].cast<double>()); };
    input.intrinsics = {number(0), number(1), number(2), number(3)};
  } catch (const py::cast_error&) {
    refuse_input("intrinsics", "expected four intrinsics: fx, fy, cx, cy in pixels");
  }
  input.has_intrinsics = true;
}

/// What the library refuses of it in any size.
void check(zvf_input input) {
  input.width = input.height = 1;
  Failure failure = {};
  zvf_chain* chain = zvf_chain_create(&failure.error);
  const bool good = chain != nullptr && zvf_chain_set_input(chain, &input, &failure.error) == ZVF_OK;
  zvf_chain_destroy(chain);
  if (!good) throw failure;
}

}  // namespace

zvf_input read_input(const py::dict& fields) {
  zvf_input input = zvf_input_of(0, 0);
  read_pixel_type(fields, input);
  visit_own(input, [&](const char* name, auto& number) { read(fields, name, number); });
  input.has_correction = field_of(fields, "correction").has_value();
  read(fields, "correction", input.correction);
  read_geometry(fields, input);
  read_intrinsics(fields, input);
  check(input);
  return input;
}

py::dict input_fields(const zvf_input& input) {
  py::dict fields;
  const auto write = [&](const char* name, const auto& number) { fields[name] = number; };
  fields["pixel_type"] = kit::pixel_type_name(input.pixel_type);
  visit_own(input, write);
  if (input.has_correction) fields["correction"] = input.correction;
  if (input.has_geometry) visit_geometry(input.geometry, write);
  const zvf_intrinsics& i = input.intrinsics;
  if (input.has_intrinsics) fields["intrinsics"] = py::make_tuple(i.fx, i.fy, i.cx, i.cy);
  return fields;
}

zvf_input input_record(kit::Input input) {
  input.traits.width = input.traits.height = 0;
  return zvfilter::input_record(input);
}

kit::Input kit_input(zvf_input input) {
  input.width = input.height = 1;
  kit::Input result = zvfilter::read_input(input);
  result.traits.width = result.traits.height = 0;
  result.traits.intrinsic.width = result.traits.intrinsic.height = 0;
  return result;
}

void bind_input(py::module_& module) {
  module.def(
      "complete_input", [](const py::dict& fields) { return input_fields(read_input(fields)); },
      py::arg("fields"));
  module.def(
      "read_camera_file",
      [](const std::string& path) { return input_fields(input_record(kit::read_camera_file(path))); },
      py::arg("path"));
}

}  // namespace zvpython
