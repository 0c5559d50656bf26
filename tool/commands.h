#ifndef ZVFILTER_COMMANDS_H
#define ZVFILTER_COMMANDS_H

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "camera_options.h"

namespace zvfilter {

/// The options of `run` as they were typed.
struct RunOptions {
  std::vector<std::string> filters;
  std::vector<std::string> inputs;
  std::string output;
  std::optional<std::string> format;
  bool preview = false;
  std::optional<std::string> size;
  std::optional<std::string> value_scale;
  std::optional<std::string> bits;
  std::optional<std::string> pixel_type;
  bool frame_set = false;
  std::optional<std::string> baseline;
  std::optional<std::string> fx;
  std::optional<std::string> camera;
  std::optional<std::string> truth;
};

/// The options of `camera` as they were typed.
struct CameraCommandOptions {
  std::vector<CameraSetting> settings;
  std::string output;
};

/// Each command takes the plug-in's path, or nothing for the program's own, and throws Failure.
void list_command(const std::optional<std::string>& plugin, bool json, std::ostream& out);
void schema_command(const std::optional<std::string>& plugin, const std::string& filter,
                    std::ostream& out);
/// @param notes takes warnings and notes, one line each, beginning with "zvfilter: "
void run_command(const std::optional<std::string>& plugin, const RunOptions& options, std::ostream& out,
                 std::ostream& notes);
/// Needs no plug-in.
void camera_command(const CameraCommandOptions& options, std::ostream& out);

}  // namespace zvfilter

#endif
