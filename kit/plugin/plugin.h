#ifndef KIT_PLUGIN_PLUGIN_H
#define KIT_PLUGIN_PLUGIN_H

#include <filesystem>

#include "kit/filter/filter_library.h"

namespace kit {

/// Loads a plug-in as its host does it. The program has to offer the host's functions.
/// @throws Error when the file does not load or lacks a function
FilterLibrary load_plugin(const std::filesystem::path& file);

/// The plug-in that belongs to this program: the installed one, else that of the build tree.
/// @throws Error when neither is there
std::filesystem::path default_plugin_file();

}  // namespace kit

#endif
