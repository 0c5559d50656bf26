#ifndef KIT_COMMON_FILES_H
#define KIT_COMMON_FILES_H

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kit/common/descriptor.h"

namespace kit {

using Bytes = std::vector<unsigned char>;
using ByteView = std::span<const unsigned char>;

/// @throws Error when the folder is not there and cannot be made
void make_folder(const std::filesystem::path& folder);

/// @throws Error, before anything is read, when it is not a regular file or has more than `most` bytes
Bytes read_whole(const std::filesystem::path& file, std::size_t most);
std::string read_text(const std::filesystem::path& file, std::size_t most);

enum class Durability {
  buffered,  ///< a file is on its storage when the system gets to it
  synced,    ///< it is there when the call returns
};

/// A file that comes whole or not at all: written as .NAME.NUMBER.tmp beside it, it takes its name when it is published and
/// is removed when it never is. What a writer that was killed left under such a name is replaced; one that still writes
/// keeps its own. All throw Error.
class PendingFile {
 public:
  explicit PendingFile(const std::filesystem::path& file);
  PendingFile(const PendingFile&) = delete;
  PendingFile& operator=(const PendingFile&) = delete;
  ~PendingFile();

  std::uint64_t size() const { return size_; }
  void write(ByteView bytes);  ///< at the end
  void write_at(std::uint64_t offset, ByteView bytes);
  /// @return how many bytes there were; fewer than asked for only at the end
  std::size_t read_at(std::uint64_t offset, std::span<unsigned char> to) const;
  void publish(Durability durability);

 private:
  int create();

  std::filesystem::path file_;
  std::filesystem::path path_;
  Descriptor descriptor_;
  std::uint64_t size_ = 0;
};

/// A regular file, of which any part may be read by any thread. Both throw Error.
class ReadableFile {
 public:
  explicit ReadableFile(const std::filesystem::path& file);
  std::uint64_t size() const { return size_; }
  /// @return how many bytes there were; fewer than asked for only at the end
  std::size_t read_at(std::uint64_t offset, std::span<unsigned char> to) const;

 private:
  std::filesystem::path file_;
  Descriptor descriptor_;
  std::uint64_t size_ = 0;
};

/// A file of these bytes, as a PendingFile.
/// @throws Error
void write_whole(const std::filesystem::path& file, ByteView bytes, Durability durability);
void write_text(const std::filesystem::path& file, std::string_view text, Durability durability);

}  // namespace kit

#endif
