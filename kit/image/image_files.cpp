#include "kit/image/image_files.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "kit/common/error.h"

namespace kit {

namespace fs = std::filesystem;

namespace {

// No format needs more than three bytes a pixel (a PNG of one column that does not compress). The rest is for what
// stands beside the pixels.
constexpr std::size_t kMostImageBytes = 4 * kMostPixels;

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
    const bool image =
        !name.starts_with('.') && !name.ends_with(kPreviewSuffix) && codec_of(entry->path()) != nullptr;
    if (std::error_code ignored; image && entry->is_regular_file(ignored)) files.push_back(entry->path());
  }
  if (error) fail(folder.string(), ": cannot be listed: ", error.message());
  if (files.size() == before) {
    fail(folder.string(), ": holds no image; expected files ending in ", format_names());
  }
}

}  // namespace

const Codec* codec_of(const fs::path& file) { return codec_of_extension(file.extension().string()); }

std::vector<fs::path> collect_images(const std::vector<std::string>& inputs) {
  std::vector<fs::path> files;
  for (const std::string& input : inputs) {
    std::error_code error;
    const fs::file_status status = fs::status(input, error);
    if (!fs::exists(status)) {
      const bool known = !error || error == std::errc::no_such_file_or_directory;
      fail(input, ": no such file or folder", known ? "" : " (" + error.message() + ")");
    }
    if (fs::is_directory(status)) {
      collect_folder(input, files);
    } else if (codec_of(input) != nullptr) {
      files.emplace_back(input);
    } else {
      refuse(input, ": is of no known format; expected a name ending in ", format_names());
    }
  }
  std::stable_sort(files.begin(), files.end(), [](const fs::path& a, const fs::path& b) {
    return std::pair(a.filename(), a) < std::pair(b.filename(), b);
  });
  return files;
}

Image read_image(const fs::path& file, const Size& size) {
  const Codec& codec = *codec_of(file);
  if (codec.needs_size && size == Size{}) refuse(file.string(), ": a raw file does not say its size");
  const Bytes bytes = read_whole(file, kMostImageBytes);
  try {
    return codec.decode(bytes, size);
  } catch (const Error& problem) {
    fail(file.string(), ": ", problem.what());
  }
}

}  // namespace kit
