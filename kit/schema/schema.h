#ifndef KIT_SCHEMA_SCHEMA_H
#define KIT_SCHEMA_SCHEMA_H

#include <string>
#include <string_view>
#include <vector>

namespace kit {

/// One line of a filter's configuration schema. The numbers stay texts: they are passed on, shown and
/// compared as such.
struct SchemaParameter {
  std::string name;
  std::string type;  ///< "integer", "float", "bool", "uint16_t" or "uint32_t"
  std::string min;
  std::string max;
  std::string step;
  std::string default_value;
  std::string description;  ///< trailing blanks are part of it

  bool operator==(const SchemaParameter&) const = default;
};

/// Reads a configuration schema, in the order of its lines, which is the order of the values of an
/// update. An empty text has no parameters; a line feed at the end is optional.
/// @throws Error naming the line that does not have seven fields or names no known type
std::vector<SchemaParameter> parse_schema(std::string_view text);

}  // namespace kit

#endif
