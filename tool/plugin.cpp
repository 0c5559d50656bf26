#include "plugin.h"

#include <dlfcn.h>
#include <utility>

#include "failure.h"
#include "filter_behaviour.h"
#include "suggestions.h"
#include "text.h"

namespace zvfilter {

namespace fs = std::filesystem;

namespace {

std::string describe(const zv_error* error) {
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
  if (error != nullptr) fail_run(name_ + " gives no schema: " + describe(error));
  if (text == nullptr) fail_run(name_ + " gives no schema");
  return text;
}

void Filter::configure(const std::vector<std::string>& values) {
  std::vector<const char*> texts;
  for (const std::string& value : values) texts.push_back(value.c_str());
  zv_error* error = nullptr;
  context_->update_config(context_->filter, texts.size(), texts.data(), &error);
  if (error != nullptr) fail_run(name_ + " refuses its configuration: " + describe(error));
}

devhost::Frame Filter::process(const zv_frame_t* frame, const std::string& subject) {
  zv_error* error = nullptr;
  devhost::Frame output(context_->process(context_->filter, frame, &error));
  if (error != nullptr) {
    const std::string hint(failure_hint(name_, zv_error_get_message(error)));
    fail_run(subject + ": " + name_ + " failed: " + describe(error) + hint);
  }
  if (!output) fail_run(subject + ": " + name_ + " gave neither a frame nor an error");
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
    fail_run(concat("the plug-in ", file.string(),
                    " does not load: ", reason != nullptr ? reason : "unknown"));
  }
  count_ = find<decltype(zv_get_filter_count)>("zv_get_filter_count");
  name_ = find<decltype(zv_get_filter_name)>("zv_get_filter_name");
  create_ = find<decltype(zv_create_filter)>("zv_create_filter");
}

template <typename Function>
Function* Plugin::find(const char* name) const {
  void* address = dlsym(library_.get(), name);
  if (address == nullptr) {
    fail_run(concat("the plug-in ", file_.string(), " lacks the function ", name));
  }
  return reinterpret_cast<Function*>(address);
}

fs::path Plugin::default_file() {
  std::error_code error;
  const fs::path here = fs::read_symlink("/proc/self/exe", error).parent_path();
  const fs::path installed = (here / ZVFILTER_INSTALLED_LIBDIR / ZVFILTER_PLUGIN_FILE).lexically_normal();
  const fs::path built = (here / ZVFILTER_BUILT_LIBDIR / ZVFILTER_PLUGIN_FILE).lexically_normal();
  for (const fs::path& file : {installed, built}) {
    if (fs::exists(file, error)) return file;
  }
  fail_run(concat("no plug-in ", installed.string(), installed != built ? " or " + built.string() : "",
                  "; name one with --plugin PATH"));
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
  if (context->destroy == nullptr || context->filter == nullptr ||
      context->get_config_schema == nullptr || context->update_config == nullptr ||
      context->process == nullptr) {
    fail_run(concat("the plug-in ", file_.string(), " makes an incomplete record for ", name_(index)));
  }
  return Filter(library_, context, name_(index));
}

Filter Plugin::create(const std::string& name) const {
  const std::vector<std::string> known = names();
  for (std::size_t i = 0; i < known.size(); ++i) {
    if (known[i] != name) continue;
    if (auto filter = create(static_cast<std::int32_t>(i))) return *std::move(filter);
    fail_run(concat("the filter ", name, " is not available in ", file_.string()));
  }
  fail_usage(concat("unknown filter ", name, "; ", suggest(name, known)));
}

}  // namespace zvfilter
