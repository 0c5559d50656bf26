#ifndef FILTERPROCESSOR_FRAMEWORK_REGISTRY_FILTER_FACTORY_H
#define FILTERPROCESSOR_FRAMEWORK_REGISTRY_FILTER_FACTORY_H

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>

#include "framework/priv_filter.h"

namespace filterprocessor {

/// The filters by index. One instance for the process, made on first use and kept until the library is
/// unloaded. Any thread may call any operation.
class FilterFactory {
 public:
  static std::shared_ptr<FilterFactory> getInstance();

  std::int32_t getFilterCount() const;
  /// The name at `index`, or "UnknownFilter". Lives as long as the registry.
  const char* getFilterName(std::int32_t index) const;
  /// A new filter, or null for a bad index or without memory.
  std::shared_ptr<IPrivFilter> createFilter(std::int32_t index) const;

 private:
  struct Entry {
    const char* name;
    std::shared_ptr<IPrivFilter> (*create)();
  };

  FilterFactory();
  const Entry* find(std::int32_t index) const;

  /// Never destroyed: the host may call while the process ends, after static objects are gone.
  union Instance {
    constexpr Instance() : pointer() {}
    ~Instance() {}

    std::shared_ptr<FilterFactory> pointer;
  };
  static Instance instance_;
  static std::mutex instanceMutex_;

  std::array<Entry, 9> entries_;
};

}  // namespace filterprocessor

#endif
