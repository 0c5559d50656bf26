/// A host's hold on a filter.
#ifndef FILTERPROCESSOR_HOST_FILTER_HANDLE_H
#define FILTERPROCESSOR_HOST_FILTER_HANDLE_H

#include <memory>
#include <string>

#include "filterprocessor/filter_processor.h"

namespace devhost {

struct DestroyFilter {
  void operator()(PrivFilterContext* context) const { context->destroy(context); }
};
using FilterHandle = std::unique_ptr<PrivFilterContext, DestroyFilter>;

/// A new filter from the library that the program is linked with, or null when it has none of this name.
inline FilterHandle make_filter(const std::string& name) {
  for (std::int32_t i = 0; i < zv_get_filter_count(); ++i) {
    if (zv_get_filter_name(i) == name) return FilterHandle(zv_create_filter(i));
  }
  return nullptr;
}

}  // namespace devhost

#endif
