#include "kit/filter/filter_library.h"

#include <utility>

#include "kit/common/error.h"
#include "kit/common/suggestions.h"
#include "kit/filter/filter_behaviour.h"

namespace kit {

namespace {

std::string text_of(const zv_error* error) {
  return concat('"', zv_error_get_message(error), "\" (function ", zv_error_get_function(error),
                ", args ", zv_error_get_args(error), ", exception type ",
                zv_error_get_exception_type(error), ")");
}

}  // namespace

Filter::Filter(std::shared_ptr<void> library, PrivFilterContext* context, std::string name)
    : library_(std::move(library)), context_(context), name_(std::move(name)) {}

std::string Filter::schema() const {
  zv_error* error = nullptr;
  const char* text = context_->get_config_schema(context_->filter, &error);
  if (error != nullptr) fail(name_, " gives no schema: ", text_of(error));
  if (text == nullptr) fail(name_, " gives no schema");
  return text;
}

std::vector<SchemaParameter> Filter::parameters() const {
  const std::string text = schema();
  try {
    return parse_schema(text);
  } catch (const Error& problem) {
    fail(name_, ": ", problem.what());
  }
}

void Filter::configure(const std::vector<std::string>& values) {
  std::vector<const char*> texts;
  for (const std::string& value : values) texts.push_back(value.c_str());
  zv_error* error = nullptr;
  context_->update_config(context_->filter, texts.size(), texts.data(), &error);
  if (error != nullptr) fail(name_, " refuses its configuration: ", text_of(error));
  values_ = values;
}

std::string Filter::hint(std::string_view message, const zv_frame_t* frame) const {
  const framehost::Frame depth = framehost::depth_frame_of(frame);
  hosts::FrameTraits traits = framehost::traits_of(depth.get());
  if (const hosts::ProfileTraits* profile = framehost::profile_of(depth.get()))
    traits.disparity = profile->disparity;
  FailedCall call{{}, traits};
  try {
    const std::vector<SchemaParameter> schema = parameters();
    for (std::size_t i = 0; i < schema.size(); ++i)
      call.values[schema[i].name] = i < values_.size() ? values_[i] : schema[i].default_value;
  } catch (const Error&) {
    return "";  // the filter's first error is what counts
  }
  return failure_hint(name_, message, call);
}

framehost::Frame Filter::process(const zv_frame_t* frame) {
  zv_error* error = nullptr;
  framehost::Frame output(context_->process(context_->filter, frame, &error));
  if (error != nullptr) {
    fail(name_, " failed: ", text_of(error), hint(zv_error_get_message(error), frame));
  }
  if (!output) fail(name_, " gave neither a frame nor an error");
  return output;
}

FilterLibrary::FilterLibrary(const Functions& functions, std::string label, std::shared_ptr<void> library)
    : functions_(functions), label_(std::move(label)), library_(std::move(library)) {}

std::vector<std::string> FilterLibrary::names() const {
  std::vector<std::string> names;
  const std::int32_t count = functions_.count();
  for (std::int32_t i = 0; i < count; ++i) {
    const char* name = functions_.name(i);
    names.emplace_back(name != nullptr ? name : "");
  }
  return names;
}

std::optional<Filter> FilterLibrary::create(std::int32_t index) const {
  PrivFilterContext* context = functions_.create(index);
  if (context == nullptr) return std::nullopt;
  if (context->destroy == nullptr || context->filter == nullptr || context->reset == nullptr ||
      context->get_config_schema == nullptr || context->update_config == nullptr ||
      context->process == nullptr) {
    fail(label_, " makes an incomplete record for ", functions_.name(index));
  }
  return Filter(library_, context, functions_.name(index));
}

Filter FilterLibrary::create(const std::string& name) const {
  const std::vector<std::string> known = names();
  for (std::size_t i = 0; i < known.size(); ++i) {
    if (known[i] != name) continue;
    if (auto filter = create(static_cast<std::int32_t>(i))) return *std::move(filter);
    fail("the filter ", name, " is not available in ", label_);
  }
  refuse("unknown filter ", name, "; ", suggest(name, known));
}

std::vector<FilterDescription> FilterLibrary::describe() const {
  std::vector<FilterDescription> filters;
  for (const std::string& name : names()) {
    const auto filter = create(static_cast<std::int32_t>(filters.size()));
    filters.push_back({name, filter.has_value(), {}});
    if (filter) filters.back().parameters = filter->parameters();
  }
  return filters;
}

std::string FilterLibrary::level() const {
  const char* name = functions_.level != nullptr ? functions_.level() : nullptr;
  return name != nullptr ? name : "";
}

}  // namespace kit
