#include "frame_source.h"

#include <utility>

#include "failure.h"
#include "files.h"

namespace zvfilter {

namespace fs = std::filesystem;

namespace {

const Codec& codec_of(const fs::path& file) { return *codec_of_extension(file.extension().string()); }

const fs::path& truth_of(const fs::path& file, const std::vector<fs::path>& truth) {
  const fs::path* found = nullptr;
  for (const fs::path& candidate : truth) {
    if (candidate.stem() != file.stem()) continue;
    if (found != nullptr) {
      fail_usage(concat(found->string(), " and ", candidate.string(), " would both be the truth of ",
                        file.string()));
    }
    found = &candidate;
  }
  if (found == nullptr) {
    fail_run(concat(file.string(), ": has no truth; expected a file named ", file.stem().string(), " in ",
                    truth.front().parent_path().string()));
  }
  return *found;
}

}  // namespace

FileSource::FileSource(std::vector<fs::path> files, const std::vector<fs::path>& truth,
                       std::optional<Size> raw_size, FrameAttributes attributes)
    : files_(std::move(files)), raw_size_(raw_size.value_or(Size{})), attributes_(std::move(attributes)) {
  bool needs_size = false;
  const auto expect_size = [&](const fs::path& file) {
    if (!codec_of(file).needs_size) return;
    needs_size = true;
    if (!raw_size) {
      fail_usage(file.string() + ": a raw file does not say its size; give it with --size WxH");
    }
  };
  for (const fs::path& file : files_) {
    expect_size(file);
    if (truth.empty()) continue;
    truth_.push_back(truth_of(file, truth));
    expect_size(truth_.back());
  }
  if (raw_size && !needs_size) {
    fail_usage(concat("--size ", raw_size->width, 'x', raw_size->height,
                      ": is for raw files, and there is none; the others say their size"));
  }
}

FrameName FileSource::name(std::size_t index) const {
  const fs::path& file = files_[index];
  FrameName name{file.string(), file.stem().string(), file.extension().string(), {file}};
  if (!truth_.empty()) name.files.push_back(truth_[index]);
  return name;
}

Image FileSource::read(const fs::path& file) const {
  const Bytes bytes = read_whole(file);
  try {
    return codec_of(file).decode(bytes, raw_size_);
  } catch (const BadImage& problem) {
    fail_run(file.string() + ": " + problem.what());
  }
}

SourceFrame FileSource::load(std::size_t index) {
  SourceFrame loaded{describe_frame(read(files_[index]), attributes_), std::nullopt};
  if (truth_.empty()) return loaded;
  loaded.truth = read(truth_[index]);
  if (loaded.truth->width != loaded.frame.width || loaded.truth->height != loaded.frame.height) {
    fail_run(concat(truth_[index].string(), ": is ", loaded.truth->width, "x", loaded.truth->height,
                    "; expected ", loaded.frame.width, "x", loaded.frame.height, ", the size of ",
                    files_[index].string()));
  }
  return loaded;
}

CameraSource::CameraSource(const CameraRequest& request, FrameAttributes attributes)
    : camera_(request.config), count_(request.frames), attributes_(std::move(attributes)) {}

FrameName CameraSource::name(std::size_t index) const {
  return {concat(kCameraInput, " frame ", index), camera_frame_stem(index), ".png", {}};
}

SourceFrame CameraSource::load(std::size_t index) {
  devhost::CameraFrame made = camera_.frame(static_cast<unsigned>(index));
  Image pixels{made.disparity.width, made.disparity.height, std::exchange(made.disparity.pixels, {})};
  Image truth{pixels.width, pixels.height, std::move(made.truth)};
  FrameAttributes attributes = attributes_;
  if (!attributes.camera) attributes.camera = std::move(made.disparity);
  return {describe_frame(std::move(pixels), attributes), std::move(truth)};
}

}  // namespace zvfilter
