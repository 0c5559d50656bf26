#include "kit/frame/camera_file.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "kit/common/error.h"
#include "kit/common/files.h"
#include "kit/common/suggestions.h"

namespace kit {

namespace {

using Json = nlohmann::ordered_json;

/// How a number of one type is read and written. It may lie anywhere: the disparity record is packed.
struct NumberType {
  std::string (*expected)();
  bool (*read)(const Json& value, void* number);  // whether the value fits
  Json (*write)(const void* number);
};

template <typename Number>
std::string expected() {
  using Limits = std::numeric_limits<Number>;
  if constexpr (std::is_integral_v<Number>) {
    return concat("a whole number from ", +Limits::min(), " to ", +Limits::max());
  } else {
    return sizeof(Number) == sizeof(double) ? "a number" : "a number of 32 bits";
  }
}

template <typename Number>
bool fits(const Json& value) {
  if constexpr (std::is_integral_v<Number>) {
    if (value.is_number_unsigned()) return std::in_range<Number>(value.get<std::uint64_t>());
    return value.is_number_integer() && std::in_range<Number>(value.get<std::int64_t>());
  } else {
    constexpr double most = std::numeric_limits<Number>::max();
    return value.is_number() && std::abs(value.get<double>()) <= most;
  }
}

template <typename Number>
bool read(const Json& value, void* number) {
  if (!fits<Number>(value)) return false;
  const auto fitting = value.get<Number>();
  std::memcpy(number, &fitting, sizeof fitting);
  return true;
}

template <typename Number>
Json write(const void* number) {
  Number value;
  std::memcpy(&value, number, sizeof value);
  return value;
}

template <typename Number>
constexpr NumberType kType = {expected<Number>, read<Number>, write<Number>};

struct Field {
  std::string name;
  void* number;
  const NumberType& type;
};

/// The fields of one object of the file; without a name: of the file itself.
struct Group {
  std::string name;
  std::vector<Field> fields;
};

std::vector<Group> groups_of(Frame& camera) {
  ZVCameraIntrinsic& i = camera.intrinsic;
  ZVDisparityParam& d = camera.disparity;
  return {
      {"",
       {{"format", &camera.format, kType<std::int32_t>},
        {"pixelType", &camera.pixel_type, kType<std::int32_t>},
        {"bits", &camera.bits, kType<std::uint8_t>},
        {"valueScale", &camera.value_scale, kType<float>}}},
      {"intrinsics",
       {{"fx", &i.fx, kType<float>},
        {"fy", &i.fy, kType<float>},
        {"cx", &i.cx, kType<float>},
        {"cy", &i.cy, kType<float>},
        {"width", &i.width, kType<std::int16_t>},
        {"height", &i.height, kType<std::int16_t>}}},
      {"disparity",
       {{"zpd", &d.zpd, kType<double>},
        {"zpps", &d.zpps, kType<double>},
        {"baseline", &d.baseline, kType<float>},
        {"fx", &d.fx, kType<double>},
        {"bitSize", &d.bitSize, kType<std::uint8_t>},
        {"unit", &d.unit, kType<float>},
        {"minDisparity", &d.minDisparity, kType<float>},
        {"packMode", &d.packMode, kType<std::uint8_t>},
        {"dispOffset", &d.dispOffset, kType<float>},
        {"invalidDisp", &d.invalidDisp, kType<std::int32_t>},
        {"dispIntPlace", &d.dispIntPlace, kType<std::int32_t>},
        {"isDualCamera", &d.isDualCamera, kType<std::uint8_t>}}},
  };
}

std::string shown(const Json& value) {
  return value.is_structured() ? concat("an ", value.type_name()) : value.dump(-1, ' ', true);
}

/// An object of the file, with complaints that name its fields.
struct Object {
  const Json& json;
  std::string label;  // of the file and of the object in it

  [[noreturn]] void fail_field(const std::string& name, const std::string& problem) const {
    fail(label, name, ": ", problem);
  }
  const Json& find(const std::string& name, const std::string& expected) const {
    const auto found = json.find(name);
    if (found == json.end()) fail_field(name, "is missing; expected " + expected);
    return *found;
  }
  Object object(const std::string& name) const {
    const Json& value = find(name, "an object");
    if (!value.is_object()) fail_field(name, concat("is ", shown(value), "; expected an object"));
    return {value, concat(label, name, '.')};
  }
  void read(const std::string& name, const NumberType& type, void* number) const {
    const Json& value = find(name, type.expected());
    if (type.read(value, number)) return;
    fail_field(name, concat("is ", shown(value), "; expected ", type.expected()));
  }
  void expect_no_other(const std::vector<std::string>& known) const {
    for (const auto& [name, value] : json.items()) {
      if (std::find(known.begin(), known.end(), name) != known.end()) continue;
      fail_field(name, "is unknown; " + suggest(name, known));
    }
  }
};

void read_camera(const Object& file, Frame& camera) {
  for (const Group& group : groups_of(camera)) {
    const Object object = group.name.empty() ? file : file.object(group.name);
    std::vector<std::string> known;
    for (const Field& field : group.fields) {
      object.read(field.name, field.type, field.number);
      known.push_back(field.name);
    }
    if (group.name.empty()) known.insert(known.end(), {"intrinsics", "disparity", "metadata"});
    object.expect_no_other(known);
  }
  const Object metadata = file.object("metadata");
  for (const auto& [name, value] : metadata.json.items()) {
    const auto item = parse_integer(name);
    if (!item || std::to_string(*item) != name) {
      metadata.fail_field(name, "is no metadata item; expected its number");
    }
    metadata.read(name, kType<std::int64_t>, &camera.metadata[*item]);
  }
}

}  // namespace

std::string camera_json(const Frame& camera) {
  Frame copy = camera;
  Json file = Json::object();
  for (const Group& group : groups_of(copy)) {
    Json& object = group.name.empty() ? file : file[group.name];
    for (const Field& field : group.fields) object[field.name] = field.type.write(field.number);
  }
  Json& metadata = file["metadata"] = Json::object();
  for (const auto& [item, value] : camera.metadata) metadata[std::to_string(item)] = value;
  return file.dump(2) + '\n';
}

Frame parse_camera_json(std::string_view text, const std::string& label) {
  Json file;
  try {
    file = Json::parse(text);
  } catch (const Json::exception& problem) {
    const std::string_view what = problem.what();  // "[json.exception.KIND] WHAT"
    const auto end = what.find("] ");
    fail(label, ": is no JSON: ", end != std::string_view::npos ? what.substr(end + 2) : what);
  }
  if (!file.is_object()) fail(label, ": is no JSON object");
  Frame camera;
  read_camera({file, label + ": "}, camera);
  return camera;
}

Frame read_camera_file(const std::filesystem::path& file) {
  const Bytes bytes = read_whole(file);
  return parse_camera_json({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, file.string());
}

}  // namespace kit
