#ifndef ZVFILTER_PLUGIN_H
#define ZVFILTER_PLUGIN_H

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "dev_host.h"
#include "filter_handle.h"

namespace zvfilter {

/// One filter of a loaded plug-in, driven through its record. It keeps the plug-in loaded.
class Filter {
 public:
  Filter(std::shared_ptr<void> library, PrivFilterContext* context, std::string name);

  const std::string& name() const { return name_; }
  /// The schema as the filter gives it.
  std::string schema() const;
  /// @throws Failure with the filter's error
  void configure(const std::vector<std::string>& values);
  /// @param subject what the frame is called in an error
  /// @throws Failure with the filter's error, or when it gives neither a frame nor an error
  devhost::Frame process(const zv_frame_t* frame, const std::string& subject);

 private:
  std::shared_ptr<void> library_;
  devhost::FilterHandle context_;
  std::string name_;
};

/// A plug-in loaded as its host does it.
class Plugin {
 public:
  /// @throws Failure when the file does not load or lacks a function
  explicit Plugin(const std::filesystem::path& file);

  /// The plug-in that belongs to this program: the installed one, else that of the build tree.
  /// @throws Failure when neither is there
  static std::filesystem::path default_file();

  std::vector<std::string> names() const;
  /// Nothing when the plug-in does not make the filter at `index`.
  std::optional<Filter> create(std::int32_t index) const;
  /// @throws Failure for an unknown name, with the nearest ones, and for a filter that is not available
  Filter create(const std::string& name) const;

 private:
  template <typename Function>
  Function* find(const char* name) const;

  std::filesystem::path file_;
  std::shared_ptr<void> library_;
  decltype(zv_get_filter_count)* count_;
  decltype(zv_get_filter_name)* name_;
  decltype(zv_create_filter)* create_;
};

}  // namespace zvfilter

#endif
