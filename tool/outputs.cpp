#include "outputs.h"

#include <algorithm>
#include <iomanip>

#include <sys/stat.h>

#include "kit/common/error.h"
#include "kit/image/image_files.h"
#include "kit/image/image_stream.h"

namespace zvfilter {

namespace fs = std::filesystem;

namespace {

using FileIdentity = std::pair<std::uint64_t, std::uint64_t>;

std::optional<FileIdentity> identity(const fs::path& file) {
  struct stat status {};
  if (::stat(file.c_str(), &status) != 0) return std::nullopt;
  return FileIdentity(status.st_dev, status.st_ino);
}

bool holds_stacks(const kit::Codec& codec) {
  return codec.name == "tiff" || (codec.header != nullptr && codec.header->stacks);
}

/// A folder in the way is for the writer to complain of.
bool is_result(const fs::path& file) {
  std::error_code none;
  const fs::file_status status = fs::symlink_status(file, none);
  return fs::exists(status) && !fs::is_directory(status);
}

}  // namespace

void InputFiles::add(const kit::FrameSource& source) {
  for (const kit::FrameName& name : source.names) {
    for (const fs::path& file : name.files) {
      if (const auto known = identity(file)) names_[*known] = file.string();
    }
  }
}

std::string InputFiles::find(const fs::path& file) const {
  const auto known = identity(file);
  const auto found = known ? names_.find(*known) : names_.end();
  return found != names_.end() ? found->second : "";
}

std::vector<OutputFiles> plan_outputs(const kit::FrameSource& source, const InputFiles& inputs,
                                      const OutputSettings& settings) {
  std::map<fs::path, std::string> planned;
  const auto plan = [&](const fs::path& file, const std::string& label) {
    const auto [other, fresh] = planned.emplace(file, label);
    if (!fresh) kit::refuse(other->second, " and ", label, " would both be written to ", file.string());
    if (const std::string input = inputs.find(file); !input.empty()) {
      kit::refuse(file.string(), " would replace the input ", input, "; choose another folder or format");
    }
  };
  std::vector<OutputFiles> outputs;
  for (const kit::FrameName& name : source.names) {
    OutputFiles files;
    files.format = &result_codec(name, settings);
    const bool own = files.format == kit::codec_of_extension(name.extension);
    const std::string extension = own ? name.extension : std::string(files.format->extensions.front());
    files.stack = name.stack && holds_stacks(*files.format);
    std::string stem = name.stem;
    if (files.stack) {
      files.number = name.number;
      files.count = name.count;
      stem = name.files.front().stem().string();
    }
    files.image = settings.folder / (stem + extension);
    if (files.number == 0) plan(files.image, name.label);
    if (settings.preview) {
      if (files.stack)
        kit::refuse("--preview is for images in files of their own; choose --format png or pgm");
      files.preview = settings.folder / (name.stem + kit::kPreviewSuffix);
      plan(files.preview, "the preview of " + name.label);
    }
    outputs.push_back(std::move(files));
  }
  return outputs;
}

OutputFiles numbered_output(const kit::Codec& format, const fs::path& folder, std::size_t index) {
  const std::string stem = kit::concat("frame_", std::setfill('0'), std::setw(4), index);
  OutputFiles files;
  files.format = &format;
  files.image = folder / (stem + std::string(format.extensions.front()));
  return files;
}

bool exist(const OutputFiles& files) {
  return is_result(files.image) && (files.preview.empty() || is_result(files.preview));
}

void expect_none(const std::vector<OutputFiles>& outputs) {
  for (const OutputFiles& files : outputs) {
    for (const fs::path* file : {&files.image, &files.preview}) {
      if (file->empty() || !is_result(*file)) continue;
      kit::refuse(file->string(),
                  ": is there already; --overwrite replaces it, --resume goes on after it");
    }
  }
}

void remove_results(const OutputFiles& files) {
  for (const fs::path* file : {&files.image, &files.preview}) {
    std::error_code none;
    if (!file->empty() && is_result(*file)) fs::remove(*file, none);
  }
}

const kit::Codec& result_codec(const kit::FrameName& name, const OutputSettings& settings) {
  return settings.format ? **settings.format : *kit::codec_of_extension(name.extension);
}

kit::Bytes encode_result(const kit::Codec& codec, const OutputSettings& settings,
                         const kit::FrameView& frame) {
  const kit::ImageView image = kit::image_of(frame);
  if (codec.name == "png") return kit::encode_png(image, settings.compression);
  if (codec.needs_size) return kit::encode_for_stream(codec, image, settings.raw_order);
  return codec.encode(image);
}

void write_results(const OutputFiles& files, const OutputSettings& settings, const Preview& preview,
                   const PictureScale& scale, const kit::FrameView& before, const kit::FrameView& after,
                   kit::Durability durability) {
  kit::Bytes image, picture;
  try {
    image = encode_result(*files.format, settings, after);
    if (!files.preview.empty()) picture = kit::encode_png(preview.draw(scale, before, after));
  } catch (const kit::Error& problem) {
    kit::fail(files.image.string(), ": ", problem.what());
  }
  kit::make_folder(files.image.parent_path());
  kit::write_whole(files.image, image, durability);
  if (!files.preview.empty()) kit::write_whole(files.preview, picture, durability);
}

}  // namespace zvfilter
