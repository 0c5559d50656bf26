#include "files.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

#include "failure.h"

namespace zvfilter {

namespace fs = std::filesystem;

namespace {

std::string format_names() {
  std::vector<std::string> names;
  for (const Codec& codec : codecs()) {
    for (const std::string_view extension : codec.extensions) names.emplace_back(extension);
  }
  return join(names, ", ");
}

void collect_folder(const fs::path& folder, std::vector<fs::path>& files) {
  const std::size_t before = files.size();
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    const bool image = !name.starts_with('.') && !name.ends_with(kPreviewSuffix) &&
                       codec_of_extension(entry->path().extension().string()) != nullptr;
    if (std::error_code ignored; image && entry->is_regular_file(ignored)) files.push_back(entry->path());
  }
  if (error) fail_run(concat(folder.string(), ": cannot be listed: ", error.message()));
  if (files.size() == before) {
    fail_run(concat(folder.string(), ": holds no image; expected files ending in ", format_names()));
  }
}

[[noreturn]] void fail_system(const fs::path& file, const char* what) {
  fail_run(concat(file.string(), ": ", what, ": ", std::strerror(errno)));
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

std::vector<fs::path> collect_inputs(const std::vector<std::string>& inputs) {
  std::vector<fs::path> files;
  for (const std::string& input : inputs) {
    std::error_code error;
    const fs::file_status status = fs::status(input, error);
    if (!fs::exists(status)) {
      fail_run(
          input + ": no such file or folder" +
          (error && error != std::errc::no_such_file_or_directory ? " (" + error.message() + ")" : ""));
    }
    if (fs::is_directory(status)) {
      collect_folder(input, files);
    } else if (codec_of_extension(fs::path(input).extension().string()) != nullptr) {
      files.emplace_back(input);
    } else {
      fail_usage(input + ": is of no known format; expected a name ending in " + format_names());
    }
  }
  std::stable_sort(files.begin(), files.end(), [](const fs::path& a, const fs::path& b) {
    return std::pair(a.filename(), a) < std::pair(b.filename(), b);
  });
  return files;
}

void make_folder(const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) fail_run(concat(folder.string(), ": cannot be made: ", error.message()));
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

void write_whole(const fs::path& file, const Bytes& bytes) {
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

}  // namespace zvfilter
