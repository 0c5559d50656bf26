#include "kit/plugin/plugin.h"

#include <dlfcn.h>

#include "kit/common/error.h"

namespace kit {

namespace fs = std::filesystem;

namespace {

template <typename Function>
Function* find(void* library, const char* name) {
  return reinterpret_cast<Function*>(dlsym(library, name));
}

template <typename Function>
Function* need(void* library, const char* name, const fs::path& file) {
  Function* const function = find<Function>(library, name);
  if (function == nullptr) fail("the plug-in ", file.string(), " lacks the function ", name);
  return function;
}

}  // namespace

FilterLibrary load_plugin(const fs::path& file) {
  dlerror();
  // A bare name would be looked for in the system's directories.
  const std::shared_ptr<void> library(dlopen(fs::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL),
                                      [](void* loaded) {
                                        if (loaded != nullptr) dlclose(loaded);
                                      });
  if (!library) {
    const char* reason = dlerror();
    fail("the plug-in ", file.string(), " does not load: ", reason != nullptr ? reason : "unknown");
  }
  return FilterLibrary(
      {.count = need<decltype(zv_get_filter_count)>(library.get(), "zv_get_filter_count", file),
       .name = need<decltype(zv_get_filter_name)>(library.get(), "zv_get_filter_name", file),
       .create = need<decltype(zv_create_filter)>(library.get(), "zv_create_filter", file),
       .level = find<const char*()>(library.get(), "depth_api_level")},
      "the plug-in " + file.string(), library);
}

fs::path default_plugin_file() {
  std::error_code error;
  const fs::path here = fs::read_symlink("/proc/self/exe", error).parent_path();
  const fs::path installed = (here / KIT_INSTALLED_LIBDIR / KIT_PLUGIN_FILE).lexically_normal();
  const fs::path built = (here / KIT_BUILT_LIBDIR / KIT_PLUGIN_FILE).lexically_normal();
  for (const fs::path& file : {installed, built}) {
    if (fs::exists(file, error)) return file;
  }
  fail("no plug-in ", installed.string(), installed != built ? " or " + built.string() : "");
}

}  // namespace kit
