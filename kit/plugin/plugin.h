#ifndef KIT_PLUGIN_PLUGIN_H
#define KIT_PLUGIN_PLUGIN_H

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "dev_host.h"
#include "filter_handle.h"
#include "kit/plugin/filter_description.h"

namespace kit {

/// One filter of a loaded plug-in, driven through its record. It keeps the plug-in loaded.
class Filter {
 public:
  Filter(std::shared_ptr<void> library, PrivFilterContext* context, std::string name);

  const std::string& name() const { return name_; }
  /// The schema as the filter gives it.
  /// @throws Error with the filter's error
  std::string schema() const;
  /// The same, read.
  /// @throws Error also for a schema that cannot be read
  std::vector<SchemaParameter> parameters() const;
  /// @throws Error with the filter's error
  void configure(const std::vector<std::string>& values);
  /// Forgets the frames it has seen.
  /// @throws Error with the filter's error
  void reset();
  /// @throws Error with the filter's error, or when it gives neither a frame nor an error
  devhost::Frame process(const zv_frame_t* frame);

 private:
  std::shared_ptr<void> library_;
  devhost::FilterHandle context_;
  std::string name_;
};

/// A plug-in loaded as its host does it.
class Plugin {
 public:
  /// @throws Error when the file does not load or lacks a function
  explicit Plugin(const std::filesystem::path& file);

  /// The plug-in that belongs to this program: the installed one, else that of the build tree.
  /// @throws Error when neither is there
  static std::filesystem::path default_file();

  std::vector<std::string> names() const;
  /// Nothing when the plug-in does not make the filter at `index`.
  std::optional<Filter> create(std::int32_t index) const;
  /// @throws Error for an unknown name, with the nearest ones, and for a filter that is not available
  Filter create(const std::string& name) const;
  /// Every filter, in the plug-in's order.
  std::vector<FilterDescription> describe() const;
  /// The processor level that its kernels run at; empty where it does not say.
  std::string level() const;

 private:
  template <typename Function>
  Function* find(const char* name) const;

  std::filesystem::path file_;
  std::shared_ptr<void> library_;
  decltype(zv_get_filter_count)* count_;
  decltype(zv_get_filter_name)* name_;
  decltype(zv_create_filter)* create_;
};

}  // namespace kit

#endif
