#include "kit/plugin/plugin.h"

#include <dlfcn.h>
#include <utility>

#include "kit/common/error.h"
#include "kit/common/suggestions.h"
#include "kit/plugin/filter_behaviour.h"

namespace kit {

namespace fs = std::filesystem;

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
}

void Filter::reset() {
  zv_error* error = nullptr;
  context_->reset(context_->filter, &error);
  if (error != nullptr) fail(name_, " cannot be reset: ", text_of(error));
}

devhost::Frame Filter::process(const zv_frame_t* frame) {
  zv_error* error = nullptr;
  devhost::Frame output(context_->process(context_->filter, frame, &error));
  if (error != nullptr) {
    fail(name_, " failed: ", text_of(error), failure_hint(name_, zv_error_get_message(error)));
  }
  if (!output) fail(name_, " gave neither a frame nor an error");
  return output;
}

Plugin::Plugin(const fs::path& file) : file_(file) {
  // A bare name would be looked for in the system's directories.
  dlerror();
  library_.reset(dlopen(fs::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL), [](void* library) {
    if (library != nullptr) dlclose(library);
  });
  if (!library_) {
    const char* reason = dlerror();
    fail("the plug-in ", file.string(), " does not load: ", reason != nullptr ? reason : "unknown");
  }
  count_ = find<decltype(zv_get_filter_count)>("zv_get_filter_count");
  name_ = find<decltype(zv_get_filter_name)>("zv_get_filter_name");
  create_ = find<decltype(zv_create_filter)>("zv_create_filter");
}

template <typename Function>
Function* Plugin::find(const char* name) const {
  void* address = dlsym(library_.get(), name);
  if (address == nullptr) {
    fail("the plug-in ", file_.string(), " lacks the function ", name);
  }
  return reinterpret_cast<Function*>(address);
}

fs::path Plugin::default_file() {
  std::error_code error;
  const fs::path here = fs::read_symlink("/proc/self/exe", error).parent_path();
  const fs::path installed = (here / KIT_INSTALLED_LIBDIR / KIT_PLUGIN_FILE).lexically_normal();
  const fs::path built = (here / KIT_BUILT_LIBDIR / KIT_PLUGIN_FILE).lexically_normal();
  for (const fs::path& file : {installed, built}) {
    if (fs::exists(file, error)) return file;
  }
  fail("no plug-in ", installed.string(), installed != built ? " or " + built.string() : "");
}

std::vector<std::string> Plugin::names() const {
  std::vector<std::string> names;
  const std::int32_t count = count_();
  for (std::int32_t i = 0; i < count; ++i) {
    const char* name = name_(i);
    names.emplace_back(name != nullptr ? name : "");
  }
  return names;
}

std::optional<Filter> Plugin::create(std::int32_t index) const {
  PrivFilterContext* context = create_(index);
  if (context == nullptr) return std::nullopt;
  if (context->destroy == nullptr || context->filter == nullptr || context->reset == nullptr ||
      context->get_config_schema == nullptr || context->update_config == nullptr ||
      context->process == nullptr) {
    fail("the plug-in ", file_.string(), " makes an incomplete record for ", name_(index));
  }
  return Filter(library_, context, name_(index));
}

Filter Plugin::create(const std::string& name) const {
  const std::vector<std::string> known = names();
  for (std::size_t i = 0; i < known.size(); ++i) {
    if (known[i] != name) continue;
    if (auto filter = create(static_cast<std::int32_t>(i))) return *std::move(filter);
    fail("the filter ", name, " is not available in ", file_.string());
  }
  refuse("unknown filter ", name, "; ", suggest(name, known));
}

std::vector<FilterDescription> Plugin::describe() const {
  std::vector<FilterDescription> filters;
  for (const std::string& name : names()) {
    const auto filter = create(static_cast<std::int32_t>(filters.size()));
    filters.push_back({name, filter.has_value(), {}});
    if (filter) filters.back().parameters = filter->parameters();
  }
  return filters;
}

std::string Plugin::level() const {
  const auto level = reinterpret_cast<const char* (*)()>(dlsym(library_.get(), "depth_api_level"));
  const char* name = level != nullptr ? level() : nullptr;
  return name != nullptr ? name : "";
}

}  // namespace kit
