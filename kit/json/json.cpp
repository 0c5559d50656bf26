#include "kit/json/json.h"

#include <algorithm>
#include <set>

#include "kit/common/suggestions.h"

namespace kit {

namespace {

constexpr int kMostDepth = 8;

/// Watches the parser: nothing is built of a text that goes too deep or says a thing twice.
class Watch {
 public:
  explicit Watch(const std::string& label) : label_(label) {}

  bool operator()(int depth, Json::parse_event_t event, const Json& value) {
    using Event = Json::parse_event_t;
    if (depth > kMostDepth) fail(label_, ": is nested more than ", kMostDepth, " deep");
    if (event == Event::object_start) names_.emplace_back();
    if (event == Event::object_end) names_.pop_back();
    if (event == Event::key && !names_.back().insert(value.get<std::string>()).second) {
      fail(label_, ": ", value.get<std::string>(), ": is given twice");
    }
    return true;
  }

 private:
  const std::string& label_;
  std::vector<std::set<std::string>> names_;
};

}  // namespace

Json parse_json_object(std::string_view text, const std::string& label, std::size_t most) {
  if (text.size() > most) {
    fail(label, ": has ", text.size(), " bytes; at most ", most, " are read");
  }
  Json json;
  try {
    json = Json::parse(text, Watch(label));
  } catch (const Json::exception& problem) {
    const std::string_view what = problem.what();  // "[json.exception.KIND] WHAT"
    const auto end = what.find("] ");
    fail(label, ": is no JSON: ", end != std::string_view::npos ? what.substr(end + 2) : what);
  }
  if (!json.is_object()) fail(label, ": is no JSON object");
  return json;
}

std::string shown(const Json& value) {
  return value.is_structured() ? concat("an ", value.type_name()) : value.dump(-1, ' ', true);
}

void JsonObject::fail_field(const std::string& name, const std::string& problem) const {
  fail(label_, name, ": ", problem);
}

void JsonObject::fail_expected(const std::string& name, const Json& value,
                               const std::string& expected) const {
  fail_field(name, concat("is ", shown(value), "; expected ", expected));
}

const Json& JsonObject::find(const std::string& name, const std::string& expected) const {
  const auto found = json_.find(name);
  if (found == json_.end()) fail_field(name, "is missing; expected " + expected);
  return *found;
}

JsonObject JsonObject::object(const std::string& name) const {
  const Json& value = find(name, "an object");
  if (!value.is_object()) fail_expected(name, value, "an object");
  return {value, concat(label_, name, '.')};
}

std::string JsonObject::text(const std::string& name) const {
  const Json& value = find(name, "a text");
  if (!value.is_string()) fail_expected(name, value, "a text");
  return value.get<std::string>();
}

bool JsonObject::flag(const std::string& name) const {
  const Json& value = find(name, "true or false");
  if (!value.is_boolean()) fail_expected(name, value, "true or false");
  return value.get<bool>();
}

void JsonObject::expect_no_other(const std::vector<std::string>& known) const {
  for (const auto& [name, value] : json_.items()) {
    if (std::find(known.begin(), known.end(), name) != known.end()) continue;
    fail_field(name, "is unknown; " + suggest(name, known));
  }
}

}  // namespace kit
