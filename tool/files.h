#ifndef ZVFILTER_FILES_H
#define ZVFILTER_FILES_H

#include <filesystem>
#include <string>
#include <vector>

#include "images/codec.h"

namespace zvfilter {

/// The end of a preview's file name.
inline constexpr const char* kPreviewSuffix = "_preview.png";

/// The image files named: files as they are, folders as the images in them (other files, hidden files and
/// previews left out), all in the order of their names.
/// @throws Failure for an input that is missing, is of no known format or holds no image
std::vector<std::filesystem::path> collect_inputs(const std::vector<std::string>& inputs);

/// @throws Failure when the folder is not there and cannot be made
void make_folder(const std::filesystem::path& folder);

/// @throws Failure
Bytes read_whole(const std::filesystem::path& file);

/// Writes a file whole or not at all: into a new file beside it, which then takes its name.
/// @throws Failure
void write_whole(const std::filesystem::path& file, const Bytes& bytes);

}  // namespace zvfilter

#endif
