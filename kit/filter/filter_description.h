#ifndef KIT_FILTER_FILTER_DESCRIPTION_H
#define KIT_FILTER_FILTER_DESCRIPTION_H

#include <string>
#include <vector>

#include "kit/schema/schema.h"

namespace kit {

/// What a plug-in says of one of its filters.
struct FilterDescription {
  std::string name;
  bool available = false;
  std::vector<SchemaParameter> parameters;  ///< none where it is not available
};

/// An array of objects with index, name, available and parameters, and the texts of known filters; the numbers of a schema are
/// numbers.
std::string to_json(const std::vector<FilterDescription>& filters);

}  // namespace kit

#endif
