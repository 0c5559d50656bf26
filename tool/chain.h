#ifndef ZVFILTER_CHAIN_H
#define ZVFILTER_CHAIN_H

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "framework/schema.h"

namespace zvfilter {

/// A filter as it is asked for: NAME, NAME: or NAME:key=value,key=value.
struct FilterRequest {
  std::string name;
  /// Nothing: the filter is left as it is made. No pairs: every parameter gets its schema default.
  std::optional<std::vector<std::pair<std::string, std::string>>> values;
};

/// @throws Failure for a text of another form or a key given twice
FilterRequest parse_filter_request(std::string_view text);

/// The values of an update, in schema order: those asked for, the defaults of the rest.
/// @param request one with values
/// @throws Failure for an unknown key, with the nearest ones, and for a value of the wrong syntax
std::vector<std::string> configuration_values(
    const FilterRequest& request, const std::vector<filterprocessor::SchemaParameter>& schema);

}  // namespace zvfilter

#endif
