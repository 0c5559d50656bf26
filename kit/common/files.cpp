#include "kit/common/files.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

#include "kit/common/error.h"

namespace kit {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail_system(const fs::path& file, const char* what) {
  fail(file.string(), ": ", what, ": ", std::strerror(errno));
}

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { close(); }
  explicit operator bool() const { return number_ >= 0; }
  int get() const { return number_; }
  bool close() { return number_ < 0 || ::close(std::exchange(number_, -1)) == 0; }

 private:
  int number_;
};

/// A file that is removed unless it has been given its final name.
class PendingFile {
 public:
  explicit PendingFile(fs::path path) : path_(std::move(path)) {}
  PendingFile(const PendingFile&) = delete;
  PendingFile& operator=(const PendingFile&) = delete;
  ~PendingFile() {
    if (!path_.empty()) ::unlink(path_.c_str());
  }
  void rename_to(const fs::path& file) {
    if (std::rename(path_.c_str(), file.c_str()) != 0) fail_system(file, "cannot be written");
    path_.clear();
  }

 private:
  fs::path path_;
};

}  // namespace

void make_folder(const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) fail(folder.string(), ": cannot be made: ", error.message());
}

Bytes read_whole(const fs::path& file) {
  Descriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
  if (!descriptor) fail_system(file, "cannot be read");
  Bytes bytes;
  for (;;) {
    constexpr std::size_t step = std::size_t{1} << 20;
    const std::size_t size = bytes.size();
    bytes.resize(size + step);
    const ssize_t count = ::read(descriptor.get(), bytes.data() + size, step);
    if (count < 0 && errno != EINTR) fail_system(file, "cannot be read");
    bytes.resize(size + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    if (count == 0) return bytes;
  }
}

void write_whole(const fs::path& file, ByteView bytes) {
  const fs::path pending_path =
      file.parent_path() / concat(".", file.filename().string(), ".", ::getpid(), ".tmp");
  Descriptor descriptor(::open(pending_path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
  if (!descriptor) fail_system(file, "cannot be written");
  PendingFile pending(pending_path);
  for (std::size_t done = 0; done < bytes.size();) {
    const ssize_t count = ::write(descriptor.get(), bytes.data() + done, bytes.size() - done);
    if (count < 0 && errno != EINTR) fail_system(file, "cannot be written");
    done += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
  }
  if (!descriptor.close()) fail_system(file, "cannot be written");
  pending.rename_to(file);
}

}  // namespace kit
