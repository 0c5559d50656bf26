#include "frame_source.h"

#include <utility>

#include "failure.h"
#include "files.h"

namespace zvfilter {

namespace fs = std::filesystem;

namespace {

const Codec& codec_of(const fs::path& file) { return *codec_of_extension(file.extension().string()); }

}  // namespace

FileSource::FileSource(std::vector<fs::path> files, std::optional<Size> raw_size,
                       const FrameAttributes& attributes)
    : files_(std::move(files)), raw_size_(raw_size.value_or(Size{})), attributes_(attributes) {
  for (const fs::path& file : files_) {
    if (codec_of(file).needs_size && !raw_size) {
      fail_usage(file.string() + ": a raw file does not say its size; give it with --size WxH");
    }
  }
}

FrameName FileSource::name(std::size_t index) const {
  const fs::path& file = files_[index];
  return {file.string(), file.stem().string(), file.extension().string(), file};
}

devhost::FrameSpec FileSource::load(std::size_t index) {
  const fs::path& file = files_[index];
  const Bytes bytes = read_whole(file);
  try {
    return describe_frame(codec_of(file).decode(bytes, raw_size_), attributes_);
  } catch (const BadImage& problem) {
    fail_run(file.string() + ": " + problem.what());
  }
}

}  // namespace zvfilter
