#include "outputs.h"

#include <map>
#include <string>
#include <utility>

#include <sys/stat.h>

#include "kit/common/error.h"
#include "kit/image/image_files.h"
#include "preview.h"

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

std::vector<OutputFiles> plan_outputs(const kit::FrameSource& source, const OutputSettings& settings) {
  if (settings.folder.empty()) kit::refuse("the folder for the results has no name");
  std::map<FileIdentity, std::string> inputs;
  for (const kit::FrameName& name : source.names) {
    for (const fs::path& file : name.files) {
      if (const auto known = identity(file)) inputs[*known] = file.string();
    }
  }

  std::map<fs::path, std::string> planned;
  const auto plan = [&](const fs::path& file, const std::string& label) {
    const auto [other, fresh] = planned.emplace(file, label);
    if (!fresh) kit::refuse(other->second, " and ", label, " would both be written to ", file.string());
    const auto existing = identity(file);
    if (existing && inputs.contains(*existing)) {
      kit::refuse(file.string(), " would replace the input ", inputs[*existing],
                  "; choose another folder or format");
    }
  };
  std::vector<OutputFiles> outputs;
  for (const kit::FrameName& name : source.names) {
    OutputFiles files;
    const kit::Codec* own = kit::codec_of_extension(name.extension);
    files.format = settings.format.value_or(own);
    const std::string extension =
        files.format == own ? name.extension : std::string(files.format->extensions.front());
    files.image = settings.folder / (name.stem + extension);
    plan(files.image, name.label);
    if (settings.preview) {
      files.preview = settings.folder / (name.stem + kit::kPreviewSuffix);
      plan(files.preview, "the preview of " + name.label);
    }
    outputs.push_back(std::move(files));
  }
  return outputs;
}

void write_results(const OutputFiles& files, const kit::Frame& before, const kit::Frame& after,
                   kit::Durability durability) {
  kit::Bytes image, picture;
  try {
    image = files.format->encode(kit::image_of(after));
    if (!files.preview.empty()) picture = kit::encode_png(preview(before, after));
  } catch (const kit::Error& problem) {
    kit::fail(files.image.string(), ": ", problem.what());
  }
  kit::make_folder(files.image.parent_path());
  kit::write_whole(files.image, image, durability);
  if (!files.preview.empty()) kit::write_whole(files.preview, picture, durability);
}

}  // namespace zvfilter
