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

/// @throws Error, before anything is read, when it is not a regular file or has more than `most` bytes
Bytes read_whole(const std::filesystem::path& file, std::size_t most);

enum class Durability {
  buffered,  ///< a file is on its storage when the system gets to it
  synced,    ///< it is there when the call returns
};

/// Writes a file whole or not at all: into a file .NAME.NUMBER.tmp beside it, which then takes its name. What a
/// writer that was killed left under such a name is replaced; one that still writes keeps its own.
/// @throws Error
void write_whole(const std::filesystem::path& file, ByteView bytes, Durability durability);

}  // namespace kit

#endif
