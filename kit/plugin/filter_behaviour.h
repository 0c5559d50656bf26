#ifndef KIT_PLUGIN_FILTER_BEHAVIOUR_H
#define KIT_PLUGIN_FILTER_BEHAVIOUR_H

#include <string>
#include <string_view>
#include <vector>

#include "kit/plugin/schema.h"

namespace kit {

/// Whether the filter has no parameters and takes any configuration without a word.
bool ignores_configuration(std::string_view filter);

/// Whether the filter reads the stereo geometry from a frame of this pixel type.
bool uses_geometry(std::string_view filter, int pixel_type);

/// What a new filter will do with values that lie outside its schema, or that it treats otherwise than
/// its schema says: one line each, without the program's name. Empty when it simply takes them.
/// @param values one for each of the schema's parameters, of the right syntax
std::vector<std::string> configuration_warnings(std::string_view filter,
                                                const std::vector<SchemaParameter>& schema,
                                                const std::vector<std::string>& values);

/// What would be right where a filter's own error doesn't say; empty where it does.
std::string_view failure_hint(std::string_view filter, std::string_view message);

}  // namespace kit

#endif
