#ifndef FILTERPROCESSOR_FRAMEWORK_CONFIG_VALUES_H
#define FILTERPROCESSOR_FRAMEWORK_CONFIG_VALUES_H

#include <cstddef>
#include <cstdint>

#include "filterprocessor/host.h"

namespace filterprocessor {

/// The texts given to update_filter_config, and the conventions of reading them. A text that is not a
/// number, or that is missing, reads as 0.
class ConfigValues {
 public:
  ConfigValues(std::size_t argc, const char** argv, zv_error** error) noexcept
      : argc_(argc), argv_(argv), error_(error) {}

  /// Reports "the number of params error" and returns false unless there are `expected` values.
  bool count_is(std::size_t expected) const;

  std::int32_t integer(std::size_t index) const;
  double number(std::size_t index) const;

  /// Reports "params out of range" for the parameter `name` unless `accepted`, which it returns.
  bool in_range(bool accepted, const char* name) const;

  /// Reports an error of the filter's own.
  void reject(const char* message, const char* argument) const;

 private:
  const char* text(std::size_t index) const;

  std::size_t argc_;
  const char** argv_;
  zv_error** error_;
};

}  // namespace filterprocessor

#endif
