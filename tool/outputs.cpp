#include "outputs.h"

#include <map>
#include <string>
#include <utility>

#include <sys/stat.h>

#include "failure.h"
#include "files.h"

namespace zvfilter {

namespace fs = std::filesystem;

namespace {

using FileIdentity = std::pair<dev_t, ino_t>;

std::optional<FileIdentity> identity(const fs::path& file) {
  struct stat status {};
  if (::stat(file.c_str(), &status) != 0) return std::nullopt;
  return FileIdentity(status.st_dev, status.st_ino);
}

}  // namespace

std::vector<OutputFiles> plan_outputs(const FrameSource& source, const OutputSettings& settings) {
  std::map<FileIdentity, std::string> inputs;
  for (std::size_t i = 0; i < source.count(); ++i) {
    const FrameName name = source.name(i);
    for (const fs::path& file : name.files) {
      if (const auto known = identity(file)) inputs[*known] = file.string();
    }
  }

  std::map<fs::path, std::string> planned;
  const auto plan = [&](const fs::path& file, const std::string& label) {
    const auto [other, fresh] = planned.emplace(file, label);
    if (!fresh)
      fail_usage(concat(other->second, " and ", label, " would both be written to ", file.string()));
    const auto existing = identity(file);
    if (existing && inputs.contains(*existing)) {
      fail_usage(concat(file.string(), " would replace the input ", inputs[*existing],
                        "; choose another folder or format"));
    }
  };
  std::vector<OutputFiles> outputs;
  for (std::size_t i = 0; i < source.count(); ++i) {
    const FrameName name = source.name(i);
    OutputFiles files;
    files.format = settings.format != nullptr ? settings.format : codec_of_extension(name.extension);
    const std::string extension = files.format == codec_of_extension(name.extension)
                                      ? name.extension
                                      : std::string(files.format->extensions.front());
    files.image = settings.folder / (name.stem + extension);
    plan(files.image, name.label);
    if (settings.preview) {
      files.preview = settings.folder / (name.stem + kPreviewSuffix);
      plan(files.preview, "the preview of " + name.label);
    }
    outputs.push_back(std::move(files));
  }
  return outputs;
}

}  // namespace zvfilter
