#ifndef KIT_COMMON_FILES_H
#define KIT_COMMON_FILES_H

#include <filesystem>
#include <span>
#include <vector>

namespace kit {

using Bytes = std::vector<unsigned char>;
using ByteView = std::span<const unsigned char>;

/// @throws Error when the folder is not there and cannot be made
void make_folder(const std::filesystem::path& folder);

/// @throws Error
Bytes read_whole(const std::filesystem::path& file);

/// Writes a file whole or not at all: into a new file beside it, which then takes its name.
/// @throws Error
void write_whole(const std::filesystem::path& file, ByteView bytes);

}  // namespace kit

#endif
