#include "framework/config_values.h"

#include <clocale>
#include <cstdlib>

#include "framework/errors.h"

namespace filterprocessor {

namespace {

/// What numbers in texts look like, whatever the process has set. The library makes it once without memory
/// of its own and never destroys it.
locale_t c_locale() {
  static const locale_t made = newlocale(LC_ALL_MASK, "C", nullptr);
  return made;
}

}  // namespace

bool ConfigValues::count_is(std::size_t expected) const {
  if (argc_ == expected) return true;
  reject("the number of params error", "argc");
  return false;
}

// What atoi() gives on every processor here, defined for numbers of more than 32 bits as well: their low bits.
std::int32_t ConfigValues::integer(std::size_t index) const {
  return static_cast<std::int32_t>(strtol_l(text(index), nullptr, 10, c_locale()));
}

double ConfigValues::number(std::size_t index) const {
  return strtod_l(text(index), nullptr, c_locale());
}

bool ConfigValues::in_range(bool accepted, const char* name) const {
  if (!accepted) reject("params out of range", name);
  return accepted;
}

void ConfigValues::reject(const char* message, const char* argument) const {
  report_error(error_, message, "update_filter_config", argument);
}

const char* ConfigValues::text(std::size_t index) const {
  return argv_ != nullptr && argv_[index] != nullptr ? argv_[index] : "";
}

}  // namespace filterprocessor
