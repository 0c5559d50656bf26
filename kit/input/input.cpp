#include "kit/input/input.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <variant>

#include "kit/common/text.h"

namespace kit {

namespace {

/// A number of the type that `type` holds. It may lie anywhere: the disparity record is packed.
struct Field {
  std::string name;
  void* place;
  std::variant<std::uint8_t, std::int16_t, std::int32_t, std::int64_t, float, double> type;
};
using Fields = std::vector<Field>;

Fields frame_fields(hosts::FrameTraits& t) {
  return {{"format", &t.format, std::int32_t()},
          {"bits", &t.bits, std::uint8_t()},
          {"valueScale", &t.value_scale, float()}};
}

Fields intrinsics_fields(ZVCameraIntrinsic& i) {
  return {{"fx", &i.fx, float()},
          {"fy", &i.fy, float()},
          {"cx", &i.cx, float()},
          {"cy", &i.cy, float()},
          {"width", &i.width, std::int16_t()},
          {"height", &i.height, std::int16_t()}};
}

Fields disparity_fields(ZVDisparityParam& d) {
  return {{"zpd", &d.zpd, double()},
          {"zpps", &d.zpps, double()},
          {"baseline", &d.baseline, float()},
          {"fx", &d.fx, double()},
          {"bitSize", &d.bitSize, std::uint8_t()},
          {"unit", &d.unit, float()},
          {"minDisparity", &d.minDisparity, float()},
          {"packMode", &d.packMode, std::uint8_t()},
          {"dispOffset", &d.dispOffset, float()},
          {"invalidDisp", &d.invalidDisp, std::int32_t()},
          {"dispIntPlace", &d.dispIntPlace, std::int32_t()},
          {"isDualCamera", &d.isDualCamera, std::uint8_t()}};
}

std::vector<std::string> names_of(const Fields& fields) {
  std::vector<std::string> names;
  for (const Field& field : fields) names.push_back(field.name);
  return names;
}

void read_fields(const JsonObject& object, const Fields& fields) {
  for (const Field& field : fields) {
    if (!object.has(field.name)) continue;
    const auto read = [&]<typename Number>(Number) {
      const Number number = object.number<Number>(field.name);
      std::memcpy(field.place, &number, sizeof number);
    };
    std::visit(read, field.type);
  }
}

void write_fields(const Fields& fields, Json& object) {
  for (const Field& field : fields) {
    const auto write = [&](auto number) {
      std::memcpy(&number, field.place, sizeof number);
      // A float as the shortest number that reads as it, not with all digits of the double that it is.
      if constexpr (std::is_same_v<decltype(number), float>) {
        object[field.name] = parse_number(number_text(number)).value_or(0);
      } else {
        object[field.name] = number;
      }
    };
    std::visit(write, field.type);
  }
}

struct PixelType {
  std::string_view name;
  std::int32_t code;
};
constexpr std::array<PixelType, 3> kPixelTypes = {{{"depth", ZV_PIXEL_TYPE_DEPTH},
                                                   {"disparity", ZV_PIXEL_TYPE_DISPARITY},
                                                   {"linear", ZV_PIXEL_TYPE_LINEAR_DEPTH}}};

std::int32_t read_pixel_type(const JsonObject& object) {
  const std::string name = "pixelType";
  const Json& value = object.json().at(name);
  const auto code = value.is_string()           ? parse_pixel_type(value.get<std::string>())
                    : fits<std::int32_t>(value) ? std::optional(value.get<std::int32_t>())
                                                : std::nullopt;
  if (!code)
    object.fail_field(
        name, concat("is ", shown(value), "; expected depth, disparity, linear or the host's number"));
  return *code;
}

void read_geometry(const JsonObject& object, Input& input) {
  input.set_stereo(0, 0);
  const Fields fields = disparity_fields(input.traits.disparity);
  object.expect_no_other(names_of(fields));
  for (const char* needed : {"baseline", "fx"}) object.find(needed, "a number");
  read_fields(object, fields);
}

void read_intrinsics(const JsonObject& object, Input& input) {
  const Fields fields = intrinsics_fields(input.traits.intrinsic);
  object.expect_no_other(names_of(fields));
  for (const char* needed : {"fx", "fy", "cx", "cy"}) object.find(needed, "a number");
  read_fields(object, fields);
  input.has_intrinsics = true;
}

void read_metadata(const JsonObject& object, Input& input) {
  for (const auto& [name, value] : object.json().items()) {
    const auto item = parse_integer(name);
    if (!item || std::to_string(*item) != name) {
      object.fail_field(name, "is no metadata item; expected its number");
    }
    input.traits.metadata[*item] = object.number<std::int64_t>(name);
  }
}

}  // namespace

void Input::set_stereo(double baseline, double fx) {
  traits.disparity = {};
  traits.disparity.baseline = static_cast<float>(baseline);
  traits.disparity.fx = fx;
  traits.disparity.bitSize = traits.bits;
  traits.disparity.unit = 1;
  traits.disparity.packMode = 2;
  traits.disparity.dispIntPlace = std::min<int>(kNominalIntegerBits, traits.bits);
  traits.disparity.isDualCamera = 1;
  has_geometry = true;
}

Input read_input(const JsonObject& object) {
  Input input;
  hosts::FrameTraits& traits = input.traits;
  const Fields fields = frame_fields(traits);
  std::vector<std::string> known = names_of(fields);
  known.insert(known.end(), {"width", "height", "pixelType", "intrinsics", "disparity", "metadata"});
  object.expect_no_other(known);
  read_fields(object, fields);
  if (traits.bits < 1 || traits.bits > 16) {
    object.fail_field("bits", concat("is ", +traits.bits, "; expected 1 to 16"));
  }
  if (!(traits.value_scale > 0)) {
    object.fail_field("valueScale", concat("is ", traits.value_scale, "; expected a number above 0"));
  }
  if (object.has("width") != object.has("height")) {
    object.fail_field(object.has("width") ? "height" : "width", "is missing; the other side is given");
  }
  if (object.has("width")) {
    traits.width = object.number<std::uint16_t>("width");
    traits.height = object.number<std::uint16_t>("height");
  }
  if (object.has("pixelType")) traits.pixel_type = read_pixel_type(object);
  if (object.has("intrinsics")) read_intrinsics(object.object("intrinsics"), input);
  if (object.has("disparity")) read_geometry(object.object("disparity"), input);
  if (object.has("metadata")) read_metadata(object.object("metadata"), input);
  return input;
}

Json input_json(const Input& input, bool with_size) {
  hosts::FrameTraits traits = input.traits;
  Json json = Json::object();
  if (with_size && input.has_size()) {
    json["width"] = traits.width;
    json["height"] = traits.height;
  }
  json["pixelType"] = pixel_type_name(traits.pixel_type);
  write_fields(frame_fields(traits), json);
  if (input.has_intrinsics) write_fields(intrinsics_fields(traits.intrinsic), json["intrinsics"]);
  if (input.has_geometry) write_fields(disparity_fields(traits.disparity), json["disparity"]);
  if (!traits.metadata.empty()) {
    for (const auto& [item, value] : traits.metadata) json["metadata"][std::to_string(item)] = value;
  }
  return json;
}

std::optional<std::int32_t> parse_pixel_type(std::string_view text) {
  for (const PixelType& type : kPixelTypes) {
    if (type.name == text) return type.code;
  }
  return parse_integer(text);
}

std::string pixel_type_name(std::int32_t pixel_type) {
  for (const PixelType& type : kPixelTypes) {
    if (type.code == pixel_type) return std::string(type.name);
  }
  return std::to_string(pixel_type);
}

}  // namespace kit
