#ifndef KIT_PIPELINE_CHAIN_H
#define KIT_PIPELINE_CHAIN_H

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kit/plugin/schema.h"

namespace kit {

/// Texts by the names of parameters; those not named have their schema defaults.
using Values = std::map<std::string, std::string>;

/// A filter of a chain.
struct Step {
  std::string filter;
  std::optional<Values> values;  ///< nothing: the filter is left as it is made
  bool enabled = true;
};
using Chain = std::vector<Step>;

/// NAME, NAME: or NAME:key=value,key=value; NAME alone has no values, NAME: none that differs from its
/// default.
/// @throws Error for a text of another form or a key given twice
Step parse_step(std::string_view text);

/// The values of an update, in schema order.
/// @throws Error for an unknown key, with the nearest ones, and for a value of the wrong syntax
std::vector<std::string> configuration_values(const std::string& filter, const Values& values,
                                              const std::vector<SchemaParameter>& schema);

}  // namespace kit

#endif
