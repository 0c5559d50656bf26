#include <cmath>

#include "chain.h"
#include "errors.h"
#include "filterprocessor/level.h"
#include "kit/common/text.h"
#include "kit/filter/filter_behaviour.h"
#include "kit/texts/filter_texts.h"

namespace zvfilter {

namespace {

/// A filter and its parameters with numbers as numbers.
const std::vector<kit::FilterDescription>& descriptions() {
  // Never destroyed, as all of these: exit handlers may still run chains.
  static const auto& all = *new std::vector<kit::FilterDescription>(filters().describe());
  return all;
}

const std::string& chain_schema() {
  static const auto& text = *new std::string(kit::chain_file_schema(descriptions()));
  return text;
}

/// What `read` gives, or `otherwise` without memory.
template <typename Result, typename Read>
Result answered(Result otherwise, const Read& read) noexcept {
  Result result = otherwise;
  guarded(nullptr, {ZVF_FAILED, ZVF_FAILED}, [&] { result = read(); });
  return result;
}

}  // namespace

const kit::FilterLibrary& filters() {
  static const auto& library = *new kit::FilterLibrary(
      {zv_get_filter_count, zv_get_filter_name, zv_create_filter, depth_api_level}, "libzvfilter");
  return library;
}

}  // namespace zvfilter

using zvfilter::answered;
using zvfilter::descriptions;

extern "C" {

const char* zvf_version() { return ZVFILTER_VERSION; }
const char* zvf_level() { return depth_api_level(); }

size_t zvf_filter_count() { return static_cast<size_t>(zv_get_filter_count()); }

const char* zvf_filter_name(size_t filter) {
  return filter < zvf_filter_count() ? zv_get_filter_name(static_cast<int32_t>(filter)) : nullptr;
}

const char* zvf_filter_summary(size_t filter) {
  const char* const name = zvf_filter_name(filter);
  if (name == nullptr) return nullptr;
  const kit::FilterText* const text = kit::text_of(name);
  return text != nullptr ? text->summary.data() : "";  // literals end with a null
}

bool zvf_filter_has_history(size_t filter) {
  const char* const name = zvf_filter_name(filter);
  return name != nullptr && kit::has_history(name);
}

bool zvf_filter_changes_size(size_t filter) {
  const char* const name = zvf_filter_name(filter);
  return name != nullptr && kit::changes_size(name);
}

size_t zvf_parameter_count(size_t filter) {
  return answered(size_t{0}, [&] {
    return filter < descriptions().size() ? descriptions()[filter].parameters.size() : 0;
  });
}

bool zvf_parameter_at(size_t filter, size_t parameter, zvf_parameter* out) {
  if (parameter >= zvf_parameter_count(filter)) return false;
  const kit::FilterDescription& description = descriptions()[filter];
  const kit::SchemaParameter& p = description.parameters[parameter];
  const kit::ValueRange range = kit::value_range(description.name, p);
  *out = {p.name.c_str(),
          p.type.c_str(),
          range.min,
          range.max,
          kit::parse_number(p.step).value_or(0),
          kit::parse_number(p.default_value).value_or(0),
          p.description.c_str()};
  return true;
}

const char* zvf_chain_file_schema() {
  return answered<const char*>("{}", [] { return zvfilter::chain_schema().c_str(); });
}

}  // extern "C"
