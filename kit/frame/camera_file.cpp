#include "kit/frame/camera_file.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include <nlohmann/json.hpp>

#include "kit/common/error.h"
#include "kit/common/files.h"
#include "kit/common/suggestions.h"

namespace kit {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kMostBytes = 65536;
constexpr int kMostDepth = 8;

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

/// A number of the type that `type` holds. It may lie anywhere: the disparity record is packed.
struct Field {
  std::string name;
  void* place;
  std::variant<std::uint8_t, std::int16_t, std::int32_t, std::int64_t, float, double> type;
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
       {{"format", &camera.format, std::int32_t()},
        {"pixelType", &camera.pixel_type, std::int32_t()},
        {"bits", &camera.bits, std::uint8_t()},
        {"valueScale", &camera.value_scale, float()}}},
      {"intrinsics",
       {{"fx", &i.fx, float()},
        {"fy", &i.fy, float()},
        {"cx", &i.cx, float()},
        {"cy", &i.cy, float()},
        {"width", &i.width, std::int16_t()},
        {"height", &i.height, std::int16_t()}}},
      {"disparity",
       {{"zpd", &d.zpd, double()},
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
        {"isDualCamera", &d.isDualCamera, std::uint8_t()}}},
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
  void read(const Field& field) const {
    const auto read_number = [&]<typename Number>(Number number) {
      const Json& value = find(field.name, expected<Number>());
      if (!fits<Number>(value)) {
        fail_field(field.name, concat("is ", shown(value), "; expected ", expected<Number>()));
      }
      number = value.get<Number>();
      std::memcpy(field.place, &number, sizeof number);
    };
    std::visit(read_number, field.type);
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
      object.read(field);
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
    metadata.read({name, &camera.metadata[*item], std::int64_t()});
  }
}

}  // namespace

std::string camera_json(const Frame& camera) {
  Frame copy = camera;
  Json file = Json::object();
  for (const Group& group : groups_of(copy)) {
    Json& object = group.name.empty() ? file : file[group.name];
    for (const Field& field : group.fields) {
      const auto write_number = [&](auto number) {
        std::memcpy(&number, field.place, sizeof number);
        object[field.name] = number;
      };
      std::visit(write_number, field.type);
    }
  }
  Json& metadata = file["metadata"] = Json::object();
  for (const auto& [item, value] : camera.metadata) metadata[std::to_string(item)] = value;
  return file.dump(2) + '\n';
}

Frame parse_camera_json(std::string_view text, const std::string& label) {
  if (text.size() > kMostBytes) {
    fail(label, ": has ", text.size(), " bytes; at most ", kMostBytes, " are read");
  }
  const auto limit_depth = [&](int depth, Json::parse_event_t, const Json&) {
    if (depth > kMostDepth) fail(label, ": is nested more than ", kMostDepth, " deep");
    return true;
  };
  Json file;
  try {
    file = Json::parse(text, limit_depth);
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
  const Bytes bytes = read_whole(file, kMostBytes);
  return parse_camera_json({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, file.string());
}

}  // namespace kit
