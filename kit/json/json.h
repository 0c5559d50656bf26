#ifndef KIT_JSON_JSON_H
#define KIT_JSON_JSON_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "kit/common/error.h"

namespace kit {

using Json = nlohmann::ordered_json;

/// Of a chain, a camera or a request of the tuner's page.
inline constexpr std::size_t kMostJsonBytes = 65536;

/// @param label of the text in messages
/// @throws Error for a text of more than `most` bytes, nested too deep, no JSON, no object, or that has a name twice in one object
Json parse_json_object(std::string_view text, const std::string& label,
                       std::size_t most = kMostJsonBytes);

/// The value as a message shows it.
std::string shown(const Json& value);

/// Whether a JSON number is one of the C++ type.
template <typename Number>
bool fits(const Json& value) {
  if constexpr (std::is_integral_v<Number>) {
    if (value.is_number_unsigned()) return std::in_range<Number>(value.get<std::uint64_t>());
    return value.is_number_integer() && std::in_range<Number>(value.get<std::int64_t>());
  } else {
    if (!value.is_number()) return false;
    const auto number = value.get<double>();
    constexpr double most = std::numeric_limits<Number>::max();
    return number >= -most && number <= most;
  }
}

template <typename Number>
std::string expected_number() {
  using Limits = std::numeric_limits<Number>;
  if constexpr (std::is_integral_v<Number>) {
    return concat("a whole number from ", +Limits::min(), " to ", +Limits::max());
  } else {
    return sizeof(Number) == sizeof(double) ? "a number" : "a number of 32 bits";
  }
}

/// An object of a JSON text, with complaints that name its fields.
class JsonObject {
 public:
  /// @param label of the text and of the object in it, with ": " or "." at its end
  JsonObject(const Json& json, std::string label) : json_(json), label_(std::move(label)) {}

  const Json& json() const { return json_; }
  const std::string& label() const { return label_; }
  bool has(const std::string& name) const { return json_.contains(name); }

  [[noreturn]] void fail_field(const std::string& name, const std::string& problem) const;
  /// @throws Error when it is missing
  const Json& find(const std::string& name, const std::string& expected) const;
  JsonObject object(const std::string& name) const;
  std::string text(const std::string& name) const;
  bool flag(const std::string& name) const;
  template <typename Number>
  Number number(const std::string& name) const {
    const Json& value = find(name, expected_number<Number>());
    if (!fits<Number>(value)) fail_expected(name, value, expected_number<Number>());
    return value.get<Number>();
  }
  /// @throws Error for the first field that is not one of these
  void expect_no_other(const std::vector<std::string>& known) const;

 private:
  [[noreturn]] void fail_expected(const std::string& name, const Json& value,
                                  const std::string& expected) const;

  const Json& json_;
  std::string label_;
};

}  // namespace kit

#endif
