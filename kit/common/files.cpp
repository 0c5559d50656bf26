#include "kit/common/files.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fcntl.h>

#include <sys/file.h>
#include <sys/stat.h>

#include "kit/common/error.h"

namespace kit {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail_system(const fs::path& file, const char* what) {
  fail(file.string(), ": ", what, ": ", std::strerror(errno));
}
[[noreturn]] void fail_to_write(const fs::path& file) { fail_system(file, "cannot be written"); }

/// @return how many bytes there were: fewer than asked for only at the end, or -1
ssize_t read_some(int descriptor, std::uint64_t offset, std::span<unsigned char> to) {
  std::size_t done = 0;
  while (done < to.size()) {
    const ssize_t count =
        ::pread(descriptor, to.data() + done, to.size() - done, static_cast<off_t>(offset + done));
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return -1;
    if (count == 0) break;
    done += static_cast<std::size_t>(count);
  }
  return static_cast<ssize_t>(done);
}

bool is_same_file(const fs::path& path, const Descriptor& descriptor) {
  struct stat named {
  }, open{};
  return ::lstat(path.c_str(), &named) == 0 && ::fstat(descriptor.get(), &open) == 0 &&
         named.st_dev == open.st_dev && named.st_ino == open.st_ino;
}

/// Whoever writes or removes a temporary file holds its lock, where the file system has locks. A lock ends with its
/// process.
bool lock(const Descriptor& file) { return ::flock(file.get(), LOCK_EX | LOCK_NB) == 0; }

/// Removes what stands under a temporary name, unless somebody is writing it.
/// @return whether the name may be free now
bool remove_leftover(const fs::path& path) {
  const Descriptor leftover(::open(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (!leftover) return errno == ENOENT || (errno == ELOOP && ::unlink(path.c_str()) == 0);
  return lock(leftover) && (!is_same_file(path, leftover) || ::unlink(path.c_str()) == 0);
}

void sync_folder(const fs::path& folder) {
  const Descriptor descriptor(
      ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  // Some file systems keep their folders in step by themselves and refuse.
  if (!descriptor || (::fsync(descriptor.get()) != 0 && errno != EINVAL)) {
    fail_system(folder, "cannot be synced");
  }
}

}  // namespace

void make_folder(const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) fail(folder.string(), ": cannot be made: ", error.message());
}

Bytes read_whole(const fs::path& file, std::size_t most) {
  // Not waiting, so that a pipe nobody writes to is refused as well.
  const Descriptor descriptor(::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  struct stat status {};
  if (!descriptor || ::fstat(descriptor.get(), &status) != 0) fail_system(file, "cannot be read");
  if (!S_ISREG(status.st_mode)) {
    fail(file.string(), ": is no regular file; expected one of at most ", most, " bytes");
  }
  const auto expect_at_most = [&](std::uintmax_t size) {
    if (size > most) fail(file.string(), ": has ", size, " bytes; at most ", most, " are read");
  };
  expect_at_most(static_cast<std::uintmax_t>(status.st_size));
  Bytes bytes;
  bytes.reserve(static_cast<std::size_t>(status.st_size) + 1);
  for (;;) {
    constexpr std::size_t step = std::size_t{1} << 20;
    const std::size_t size = bytes.size();
    // As much as is expected and one byte more, which finds the end.
    bytes.resize(size + std::clamp<std::size_t>(bytes.capacity() - size, 1, step));
    const ssize_t count = ::read(descriptor.get(), bytes.data() + size, bytes.size() - size);
    if (count < 0 && errno != EINTR) fail_system(file, "cannot be read");
    bytes.resize(size + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    if (count == 0) return bytes;
    expect_at_most(bytes.size());
  }
}

std::string read_text(const fs::path& file, std::size_t most) {
  const Bytes bytes = read_whole(file, most);
  return {bytes.begin(), bytes.end()};
}

PendingFile::PendingFile(const fs::path& file) : file_(file), descriptor_(create()) {}

PendingFile::~PendingFile() {
  if (!path_.empty()) ::unlink(path_.c_str());
}

int PendingFile::create() {
  constexpr int most_writers = 100;
  for (int number = 0; number < most_writers;) {
    const fs::path path =
        file_.parent_path() / concat(".", file_.filename().string(), ".", number, ".tmp");
    Descriptor made(::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (!made && errno != EEXIST) fail_to_write(file_);
    // Between being made and being locked it may have been taken for a leftover.
    if (made && (lock(made) || errno != EWOULDBLOCK) && is_same_file(path, made)) {
      path_ = path;
      return made.release();
    }
    if (made || !remove_leftover(path)) ++number;
  }
  errno = EEXIST;
  fail_to_write(file_);
}

void PendingFile::write(ByteView bytes) { write_at(size_, bytes); }

void PendingFile::write_at(std::uint64_t offset, ByteView bytes) {
  while (!bytes.empty()) {
    const ssize_t count =
        ::pwrite(descriptor_.get(), bytes.data(), bytes.size(), static_cast<off_t>(offset));
    if (count < 0 && errno != EINTR) fail_to_write(file_);
    const auto done = static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    bytes = bytes.subspan(done);
    offset += done;
  }
  size_ = std::max(size_, offset);
}

std::size_t PendingFile::read_at(std::uint64_t offset, std::span<unsigned char> to) const {
  const ssize_t count = read_some(descriptor_.get(), offset, to);
  if (count < 0) fail_system(file_, "cannot be read again");
  return static_cast<std::size_t>(count);
}

void PendingFile::publish(Durability durability) {
  if (durability == Durability::synced && ::fsync(descriptor_.get()) != 0) fail_to_write(file_);
  // Renamed before it is closed: the lock has to hold until then.
  if (std::rename(path_.c_str(), file_.c_str()) != 0) fail_to_write(file_);
  path_.clear();
  if (!descriptor_.close()) fail_to_write(file_);
  if (durability == Durability::synced) sync_folder(file_.parent_path());
}

ReadableFile::ReadableFile(const fs::path& file)
    : file_(file), descriptor_(::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {
  struct stat status {};
  if (!descriptor_ || ::fstat(descriptor_.get(), &status) != 0) fail_system(file, "cannot be read");
  if (!S_ISREG(status.st_mode)) fail(file.string(), ": is no regular file");
  size_ = static_cast<std::uint64_t>(status.st_size);
}

std::size_t ReadableFile::read_at(std::uint64_t offset, std::span<unsigned char> to) const {
  const ssize_t count = read_some(descriptor_.get(), offset, to);
  if (count < 0) fail_system(file_, "cannot be read");
  return static_cast<std::size_t>(count);
}

void write_whole(const fs::path& file, ByteView bytes, Durability durability) {
  PendingFile pending(file);
  pending.write(bytes);
  pending.publish(durability);
}

void write_text(const fs::path& file, std::string_view text, Durability durability) {
  write_whole(file, {reinterpret_cast<const unsigned char*>(text.data()), text.size()}, durability);
}

}  // namespace kit
