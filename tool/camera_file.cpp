#include "camera_file.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "failure.h"
#include "files.h"
#include "suggestions.h"
#include "text.h"

namespace zvfilter {

namespace {

using Json = nlohmann::ordered_json;

template <typename Number>
std::string expected() {
  using Limits = std::numeric_limits<Number>;
  if constexpr (std::is_same_v<Number, double>) {
    return "a number";
  } else if constexpr (std::is_same_v<Number, float>) {
    return "a number of 32 bits";
  } else {
    return concat("a whole number from ", +Limits::min(), " to ", +Limits::max());
  }
}

/// The value in the field's own type, or nothing where it does not fit.
template <typename Number>
std::optional<Number> number_of(const Json& value) {
  if constexpr (std::is_floating_point_v<Number>) {
    if (!value.is_number()) return std::nullopt;
    const double number = value.get<double>();
    if (std::abs(number) > static_cast<double>(std::numeric_limits<Number>::max())) return std::nullopt;
    return static_cast<Number>(number);
  } else {
    if (value.is_number_unsigned()) {
      const auto number = value.get<std::uint64_t>();
      return std::in_range<Number>(number) ? std::optional(static_cast<Number>(number)) : std::nullopt;
    }
    if (!value.is_number_integer()) return std::nullopt;
    const auto number = value.get<std::int64_t>();
    return std::in_range<Number>(number) ? std::optional(static_cast<Number>(number)) : std::nullopt;
  }
}

/// Writes the fields that it is shown into an object.
class FieldWriter {
 public:
  template <typename Number>
  Number operator()(const char* name, Number value) {
    object_[name] = value;
    return value;
  }
  template <typename Visit>
  void object(const char* name, Visit visit) {
    FieldWriter inner;
    visit(inner);
    object_[name] = std::move(inner.object_);
  }
  void metadata(std::map<std::int32_t, std::int64_t>& items) {
    Json object = Json::object();
    for (const auto& [item, value] : items) object[std::to_string(item)] = value;
    object_["metadata"] = std::move(object);
  }
  const Json& result() const { return object_; }

 private:
  Json object_ = Json::object();
};

/// Gives the fields that it is shown their values from an object.
class FieldReader {
 public:
  /// @param prefix of the fields' names in messages
  FieldReader(const Json& object, std::string label, std::string prefix)
      : object_(object), label_(std::move(label)), prefix_(std::move(prefix)) {}

  template <typename Number>
  Number operator()(const char* name, Number) {
    return convert<Number>(name, find(name, expected<Number>()));
  }
  template <typename Visit>
  void object(const char* name, Visit visit) {
    FieldReader inner(find_object(name), label_, concat(prefix_, name, '.'));
    visit(inner);
    inner.expect_no_other();
  }
  void metadata(std::map<std::int32_t, std::int64_t>& items) {
    FieldReader inner(find_object("metadata"), label_, prefix_ + "metadata.");
    for (const auto& [name, value] : inner.object_.items()) {
      const auto item = parse_integer(name);
      if (!item || std::to_string(*item) != name) {
        inner.fail(name, "is no metadata item; expected its number");
      }
      items[*item] = inner.convert<std::int64_t>(name, value);
    }
  }
  void expect_no_other() const {
    for (const auto& [name, value] : object_.items()) {
      if (std::find(known_.begin(), known_.end(), name) == known_.end()) {
        fail(name, "is unknown; " + suggest(name, known_));
      }
    }
  }

 private:
  [[noreturn]] void fail(const std::string& name, const std::string& problem) const {
    fail_run(concat(label_, ": ", prefix_, name, ": ", problem));
  }
  const Json& find(const char* name, const std::string& expectation) {
    known_.emplace_back(name);
    const auto found = object_.find(name);
    if (found == object_.end()) fail(name, "is missing; expected " + expectation);
    return *found;
  }
  const Json& find_object(const char* name) {
    const Json& value = find(name, "an object");
    if (!value.is_object()) fail(name, concat("is ", shown(value), "; expected an object"));
    return value;
  }
  template <typename Number>
  Number convert(const std::string& name, const Json& value) const {
    if (const auto number = number_of<Number>(value)) return *number;
    fail(name, concat("is ", shown(value), "; expected ", expected<Number>()));
  }
  static std::string shown(const Json& value) {
    return value.is_structured() ? concat("an ", value.type_name()) : value.dump(-1, ' ', true);
  }

  const Json& object_;
  std::string label_, prefix_;
  std::vector<std::string> known_;
};

/// Shows every field to a writer or reader. They take and give values, because no reference may be bound
/// to a field of the packed record.
template <typename Fields>
void visit_camera(Fields& at, devhost::FrameTraits& camera) {
  camera.format = at("format", camera.format);
  camera.pixel_type = at("pixelType", camera.pixel_type);
  camera.bits = at("bits", camera.bits);
  camera.value_scale = at("valueScale", camera.value_scale);
  at.object("intrinsics", [&](Fields& of) {
    ZVCameraIntrinsic& i = camera.intrinsic;
    i.fx = of("fx", i.fx);
    i.fy = of("fy", i.fy);
    i.cx = of("cx", i.cx);
    i.cy = of("cy", i.cy);
    i.width = of("width", i.width);
    i.height = of("height", i.height);
  });
  at.object("disparity", [&](Fields& of) {
    ZVDisparityParam& d = camera.disparity;
    d.zpd = of("zpd", d.zpd);
    d.zpps = of("zpps", d.zpps);
    d.baseline = of("baseline", d.baseline);
    d.fx = of("fx", d.fx);
    d.bitSize = of("bitSize", d.bitSize);
    d.unit = of("unit", d.unit);
    d.minDisparity = of("minDisparity", d.minDisparity);
    d.packMode = of("packMode", d.packMode);
    d.dispOffset = of("dispOffset", d.dispOffset);
    d.invalidDisp = of("invalidDisp", d.invalidDisp);
    d.dispIntPlace = of("dispIntPlace", d.dispIntPlace);
    d.isDualCamera = of("isDualCamera", d.isDualCamera);
  });
  at.metadata(camera.metadata);
}

}  // namespace

std::string camera_json(const devhost::FrameTraits& camera) {
  devhost::FrameTraits copy = camera;
  FieldWriter fields;
  visit_camera(fields, copy);
  return fields.result().dump(2) + '\n';
}

devhost::FrameTraits parse_camera_json(std::string_view text, const std::string& label) {
  Json object;
  try {
    object = Json::parse(text);
  } catch (const Json::exception& problem) {
    const std::string_view what = problem.what();  // "[json.exception.KIND] WHAT"
    const auto end = what.find("] ");
    fail_run(
        concat(label, ": is no JSON: ", end != std::string_view::npos ? what.substr(end + 2) : what));
  }
  if (!object.is_object()) fail_run(label + ": is no JSON object");
  devhost::FrameTraits camera;
  FieldReader fields(object, label, "");
  visit_camera(fields, camera);
  fields.expect_no_other();
  return camera;
}

devhost::FrameTraits read_camera_file(const std::filesystem::path& file) {
  const Bytes bytes = read_whole(file);
  return parse_camera_json({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, file.string());
}

}  // namespace zvfilter
