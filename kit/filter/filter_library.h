#ifndef KIT_FILTER_FILTER_LIBRARY_H
#define KIT_FILTER_FILTER_LIBRARY_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "filter_handle.h"
#include "frame_host.h"
#include "kit/filter/filter_description.h"

namespace kit {

/// One filter of a library, driven through its record. It keeps the library loaded. What it does happens in a framehost::Scope.
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
  /// @throws Error with the filter's error, or when it gives neither a frame nor an error
  framehost::Frame process(const zv_frame_t* frame);

 private:
  std::string hint(std::string_view message, const zv_frame_t* frame) const;

  std::shared_ptr<void> library_;
  devhost::FilterHandle context_;
  std::string name_;
  std::vector<std::string> values_;  // the last that it took; none: it is as it was made
};

/// Where filters come from: three functions of a plug-in.
class FilterLibrary {
 public:
  struct Functions {
    decltype(zv_get_filter_count)* count;
    decltype(zv_get_filter_name)* name;
    decltype(zv_create_filter)* create;
    const char* (*level)();  ///< may be null
  };

  /// @param label what messages call it
  /// @param library what has to stay while its filters live; may be null
  FilterLibrary(const Functions& functions, std::string label, std::shared_ptr<void> library = nullptr);

  std::vector<std::string> names() const;
  /// Nothing when the library does not make the filter at `index`.
  std::optional<Filter> create(std::int32_t index) const;
  /// @throws Error for an unknown name, with the nearest ones, and for a filter that is not available
  Filter create(const std::string& name) const;
  /// Every filter, in the library's order.
  std::vector<FilterDescription> describe() const;
  /// The processor level that its kernels run at; empty where it does not say.
  std::string level() const;

 private:
  Functions functions_;
  std::string label_;
  std::shared_ptr<void> library_;
};

}  // namespace kit

#endif
