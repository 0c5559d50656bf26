#include "kit/frame/camera_file.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <map>
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
  std::string object;  // that it stands in; empty: the file's own
  std::string name;
  void* number;
  const NumberType& type;
};

std::vector<Field> fields_of(Frame& camera) {
  ZVCameraIntrinsic& i = camera.intrinsic;
  ZVDisparityParam& d = camera.disparity;
  return {
      {"", "format", &camera.format, kType<std::int32_t>},
      {"", "pixelType", &camera.pixel_type, kType<std::int32_t>},
      {"", "bits", &camera.bits, kType<std::uint8_t>},
      {"", "valueScale", &camera.value_scale, kType<float>},
      {"intrinsics", "fx", &i.fx, kType<float>},
      {"intrinsics", "fy", &i.fy, kType<float>},
      {"intrinsics", "cx", &i.cx, kType<float>},
      {"intrinsics", "cy", &i.cy, kType<float>},
      {"intrinsics", "width", &i.width, kType<std::int16_t>},
      {"intrinsics", "height", &i.height, kType<std::int16_t>},
      {"disparity", "zpd", &d.zpd, kType<double>},
      {"disparity", "zpps", &d.zpps, kType<double>},
      {"disparity", "baseline", &d.baseline, kType<float>},
      {"disparity", "fx", &d.fx, kType<double>},
      {"disparity", "bitSize", &d.bitSize, kType<std::uint8_t>},
      {"disparity", "unit", &d.unit, kType<float>},
      {"disparity", "minDisparity", &d.minDisparity, kType<float>},
      {"disparity", "packMode", &d.packMode, kType<std::uint8_t>},
      {"disparity", "dispOffset", &d.dispOffset, kType<float>},
      {"disparity", "invalidDisp", &d.invalidDisp, kType<std::int32_t>},
      {"disparity", "dispIntPlace", &d.dispIntPlace, kType<std::int32_t>},
      {"disparity", "isDualCamera", &d.isDualCamera, kType<std::uint8_t>},
  };
}

class CameraReader {
 public:
  CameraReader(const Json& file, const std::string& label) : file_(file), label_(label) {}

  void read_field(const Field& field) const {
    const Json& object = field.object.empty() ? file_ : object_named(field.object);
    const Json& value = find(object, field.object, field.name, field.type.expected());
    read_number(field.object, field.name, value, field.type, field.number);
  }

  void read_metadata(std::map<std::int32_t, std::int64_t>& items) const {
    for (const auto& [name, value] : object_named("metadata").items()) {
      const auto item = parse_integer(name);
      if (!item || std::to_string(*item) != name) {
        refuse_field("metadata", name, "is no metadata item; expected its number");
      }
      read_number("metadata", name, value, kType<std::int64_t>, &items[*item]);
    }
  }

  void expect_no_other(const std::string& object, const std::vector<std::string>& known) const {
    for (const auto& [name, value] : (object.empty() ? file_ : file_[object]).items()) {
      if (std::find(known.begin(), known.end(), name) != known.end()) continue;
      refuse_field(object, name, "is unknown; " + suggest(name, known));
    }
  }

 private:
  [[noreturn]] void refuse_field(const std::string& object, const std::string& name,
                                 const std::string& problem) const {
    fail(label_, ": ", object, object.empty() ? "" : ".", name, ": ", problem);
  }
  const Json& find(const Json& in, const std::string& object, const std::string& name,
                   const std::string& wanted) const {
    const auto found = in.find(name);
    if (found == in.end()) refuse_field(object, name, "is missing; expected " + wanted);
    return *found;
  }
  const Json& object_named(const std::string& name) const {
    const Json& value = find(file_, "", name, "an object");
    if (!value.is_object()) refuse_field("", name, concat("is ", shown(value), "; expected an object"));
    return value;
  }
  void read_number(const std::string& object, const std::string& name, const Json& value,
                   const NumberType& type, void* number) const {
    if (type.read(value, number)) return;
    refuse_field(object, name, concat("is ", shown(value), "; expected ", type.expected()));
  }
  static std::string shown(const Json& value) {
    return value.is_structured() ? concat("an ", value.type_name()) : value.dump(-1, ' ', true);
  }

  const Json& file_;
  const std::string& label_;
};

}  // namespace

std::string camera_json(const Frame& camera) {
  Frame copy = camera;
  Json file = Json::object();
  for (const Field& field : fields_of(copy)) {
    (field.object.empty() ? file : file[field.object])[field.name] = field.type.write(field.number);
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
  const CameraReader reader(file, label);
  std::map<std::string, std::vector<std::string>> known;
  for (const Field& field : fields_of(camera)) {
    reader.read_field(field);
    known[field.object].push_back(field.name);
  }
  reader.read_metadata(camera.metadata);
  for (const char* object : {"intrinsics", "disparity", "metadata"}) known[""].emplace_back(object);
  for (const auto& [object, names] : known) reader.expect_no_other(object, names);
  return camera;
}

Frame read_camera_file(const std::filesystem::path& file) {
  const Bytes bytes = read_whole(file);
  return parse_camera_json({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, file.string());
}

}  // namespace kit
