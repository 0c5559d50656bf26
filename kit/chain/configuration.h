#ifndef KIT_CHAIN_CONFIGURATION_H
#define KIT_CHAIN_CONFIGURATION_H

#include <string>
#include <string_view>
#include <vector>

#include "kit/chain/chain.h"
#include "kit/schema/schema.h"

namespace kit {

/// The values of an update, in schema order.
/// @throws Error for an unknown key, with the nearest ones, for a value of the wrong syntax and for one that is out of range
std::vector<std::string> configuration_values(std::string_view filter, const Values& values,
                                              const std::vector<SchemaParameter>& schema);

}  // namespace kit

#endif
