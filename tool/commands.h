#ifndef ZVFILTER_COMMANDS_H
#define ZVFILTER_COMMANDS_H

#include <iosfwd>

#include "kit/plugin/plugin.h"
#include "options.h"

namespace zvfilter {

/// Each command throws kit::Error.
void list_command(const kit::Plugin& plugin, bool json, std::ostream& out);
void schema_command(const kit::Plugin& plugin, const std::string& filter, std::ostream& out);
/// @param notes takes warnings and notes, one line each, beginning with "zvfilter: "
void run_command(const kit::Plugin& plugin, const RunOptions& options, std::ostream& out,
                 std::ostream& notes);
void camera_command(const CameraCommandOptions& options, std::ostream& out);

}  // namespace zvfilter

#endif
