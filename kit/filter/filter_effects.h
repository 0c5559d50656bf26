#ifndef KIT_FILTER_FILTER_EFFECTS_H
#define KIT_FILTER_FILTER_EFFECTS_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "filterprocessor/host.h"

namespace kit {

/// What of a step has no effect on such frames: all of it, or a value that was given. A line each; nothing of a filter that is
/// not known.
std::vector<std::string> missing_effects(std::string_view filter,
                                         const std::optional<std::map<std::string, std::string>>& values,
                                         std::int32_t pixel_type, bool corrected);

/// Pixel values that a rule of the filter keeps from what it does to others.
struct ExemptValues {
  std::uint16_t first;         ///< to 65535
  std::string_view treatment;  ///< what becomes of them
};
std::optional<ExemptValues> exempt_values(std::string_view filter,
                                          const std::optional<std::map<std::string, std::string>>& values,
                                          std::int32_t pixel_type);

}  // namespace kit

#endif
