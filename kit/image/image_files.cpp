#include "kit/image/image_files.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fnmatch.h>
#include <iterator>
#include <system_error>
#include <unistd.h>
#include <utility>

#include <sys/stat.h>

#include "kit/common/error.h"
#include "kit/common/natural_order.h"

namespace kit {

namespace fs = std::filesystem;

namespace {

/// Images of formats that are not read; in a folder of frames they are not passed over.
constexpr std::string_view kOtherImages[] = {".bmp", ".dng", ".exr",  ".gif", ".h5",  ".hdf5",
                                             ".hdr", ".jp2", ".jpeg", ".jpg", ".jxl", ".mat",
                                             ".npz", ".pbm", ".pfm",  ".pnm", ".ppm", ".webp"};

std::string format_names() {
  std::vector<std::string> names;
  for (const Codec& codec : codecs()) {
    for (const std::string_view extension : codec.extensions) names.emplace_back(extension);
  }
  return join(names, ", ");
}

bool is_other_image(const fs::path& file) {
  const std::string extension = lower_case(file.extension().string());
  return std::find(std::begin(kOtherImages), std::end(kOtherImages), extension) != std::end(kOtherImages);
}

bool fits_any(const std::string& name, const std::vector<std::string>& patterns) {
  return std::any_of(patterns.begin(), patterns.end(), [&](const std::string& pattern) {
    return ::fnmatch(pattern.c_str(), name.c_str(), 0) == 0;
  });
}

bool fits(const std::string& name, const Selection& selection) {
  return !name.starts_with('.') && (selection.include.empty() || fits_any(name, selection.include)) &&
         !fits_any(name, selection.exclude);
}

void expect_readable(const fs::path& file) {
  struct stat status {};
  if (::stat(file.c_str(), &status) != 0) {
    const int problem = errno;
    std::error_code none;
    if (problem == ENOENT && fs::is_symlink(file, none)) {
      fail(file.string(), ": is a broken link to ", fs::read_symlink(file, none).string());
    }
    fail(file.string(), ": cannot be read: ", std::strerror(problem));
  }
  if (S_ISDIR(status.st_mode)) fail(file.string(), ": is a folder; expected an image file");
  if (!S_ISREG(status.st_mode)) fail(file.string(), ": is no regular file; expected an image file");
  if (::access(file.c_str(), R_OK) != 0) fail(file.string(), ": cannot be read: ", std::strerror(errno));
}

/// Whether the file is a picture of ours: a PNG file of 8-bit colours under such a name.
bool is_preview(const fs::path& file) {
  if (!file.filename().string().ends_with(kPreviewSuffix)) return false;
  constexpr unsigned char signature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  constexpr std::size_t depth_at = 24, color_at = 25;
  unsigned char start[color_at + 1];
  return ReadableFile(file).read_at(0, start) == sizeof start &&
         std::equal(std::begin(signature), std::end(signature), start) && start[depth_at] == 8 &&
         start[color_at] == 2;
}

/// The names in a folder that the selection takes.
std::vector<fs::path> list_folder(const fs::path& folder, const Selection& selection) {
  std::vector<fs::path> files;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    if (fits(entry->path().filename().string(), selection)) files.push_back(entry->path());
  }
  if (error) fail(folder.string(), ": cannot be listed: ", error.message());
  std::sort(files.begin(), files.end(),
            [](const fs::path& a, const fs::path& b) { return natural_less(a.native(), b.native()); });
  return files;
}

[[noreturn]] void fail_empty(const fs::path& folder, const std::vector<fs::path>& others) {
  constexpr std::size_t most_named = 3;
  std::vector<std::string> names;
  for (const fs::path& other : others) {
    if (names.size() == most_named) break;
    names.push_back(other.filename().string());
  }
  if (others.size() > most_named) names.push_back(concat(others.size() - most_named, " more"));
  fail(folder.string(), ": holds no image", others.empty() ? "" : ", only ", join(names, ", "),
       "; expected files ending in ", format_names());
}

std::vector<fs::path> collect_folder(const fs::path& folder, const Selection& selection) {
  std::vector<fs::path> images, others;
  for (const fs::path& file : list_folder(folder, selection)) {
    if (is_other_image(file)) {
      fail(file.string(), ": is an image of a format that is not read; expected ", format_names(),
           ", or --exclude '*", file.extension().string(), "'");
    }
    if (codec_of(file) == nullptr) {
      others.push_back(file);
      continue;
    }
    expect_readable(file);
    (is_preview(file) ? others : images).push_back(file);
  }
  if (images.empty()) fail_empty(folder, others);
  for (const fs::path& image : images) {
    if (!selection.one_format || codec_of(image) == codec_of(images.front())) continue;
    fail(folder.string(), ": holds images of two formats, ", images.front().filename().string(), " and ",
         image.filename().string(), "; choose with --include '*", image.extension().string(), "'");
  }
  return images;
}

std::pair<std::int64_t, std::int64_t> changed(const fs::path& file) {
  struct stat status {};
  if (::stat(file.c_str(), &status) != 0) return {};
  return {status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

void sort_files(std::vector<fs::path>& files, FileOrder order) {
  const auto by_name = [](const fs::path& a, const fs::path& b) {
    return std::pair(a.filename(), a) < std::pair(b.filename(), b);
  };
  const auto naturally = [&](const fs::path& a, const fs::path& b) {
    const std::string first = a.filename().string(), second = b.filename().string();
    return first != second ? natural_less(first, second) : natural_less(a.native(), b.native());
  };
  if (order == FileOrder::name) return std::sort(files.begin(), files.end(), by_name);
  std::sort(files.begin(), files.end(), naturally);
  if (order == FileOrder::natural) return;
  std::vector<std::pair<std::pair<std::int64_t, std::int64_t>, fs::path>> timed;
  for (fs::path& file : files) timed.emplace_back(changed(file), std::move(file));
  std::stable_sort(timed.begin(), timed.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  std::transform(timed.begin(), timed.end(), files.begin(),
                 [](auto& each) { return std::move(each.second); });
}

}  // namespace

std::vector<fs::path> collect_images(const std::vector<std::string>& inputs, const Selection& selection) {
  std::vector<fs::path> files;
  bool any_folder = false;
  for (const std::string& input : inputs) {
    std::error_code error;
    const fs::file_status status = fs::status(input, error);
    if (!fs::exists(status) && !fs::is_symlink(fs::symlink_status(input, error))) {
      const bool known = !error || error == std::errc::no_such_file_or_directory;
      fail(input, ": no such file or folder", known ? "" : " (" + error.message() + ")");
    }
    if (fs::is_directory(status)) {
      any_folder = true;
      const auto images = collect_folder(input, selection);
      files.insert(files.end(), images.begin(), images.end());
    } else if (codec_of(input) != nullptr) {
      expect_readable(input);
      files.emplace_back(input);
    } else {
      refuse(input, ": is of no known format; expected a name ending in ", format_names());
    }
  }
  if (!any_folder && !(selection.include.empty() && selection.exclude.empty()))
    refuse("--include and --exclude choose from folders, and there is none");
  sort_files(files, selection.order);
  return files;
}

Image read_image(const fs::path& file, const Size& size) {
  const ImageFile source(file, {.size = size});
  if (source.is_stack()) fail(file.string(), ": holds ", source.count(), " images; expected one");
  return source.read(0);
}

}  // namespace kit
