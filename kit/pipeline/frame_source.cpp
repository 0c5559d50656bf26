#include "kit/pipeline/frame_source.h"

#include <utility>

#include "kit/common/error.h"
#include "kit/image/image_files.h"

namespace kit {

namespace fs = std::filesystem;

namespace {

const fs::path& truth_of(const fs::path& file, const std::vector<fs::path>& truth) {
  const fs::path* found = nullptr;
  for (const fs::path& candidate : truth) {
    if (candidate.stem() != file.stem()) continue;
    if (found != nullptr) {
      refuse(found->string(), " and ", candidate.string(), " would both be the truth of ", file.string());
    }
    found = &candidate;
  }
  if (found == nullptr) {
    fail(file.string(), ": has no truth; expected a file named ", file.stem().string(), " in ",
         truth.front().parent_path().string());
  }
  return *found;
}

}  // namespace

FileSource::FileSource(std::vector<fs::path> files, const std::vector<fs::path>& truth,
                       const Size& raw_size, FrameAttributes attributes)
    : files_(std::move(files)), raw_size_(raw_size), attributes_(std::move(attributes)) {
  if (truth.empty()) return;
  for (const fs::path& file : files_) truth_.push_back(truth_of(file, truth));
}

FrameName FileSource::name(std::size_t index) const {
  const fs::path& file = files_[index];
  FrameName name{file.string(), file.stem().string(), file.extension().string(), {file}};
  if (!truth_.empty()) name.files.push_back(truth_[index]);
  return name;
}

SourceFrame FileSource::load(std::size_t index) const {
  SourceFrame loaded{describe_frame(read_image(files_[index], raw_size_), attributes_), std::nullopt};
  if (truth_.empty()) return loaded;
  loaded.truth = read_image(truth_[index], raw_size_);
  if (loaded.truth->width != loaded.frame.width || loaded.truth->height != loaded.frame.height) {
    fail(truth_[index].string(), ": is ", loaded.truth->width, "x", loaded.truth->height, "; expected ",
         loaded.frame.width, "x", loaded.frame.height, ", the size of ", files_[index].string());
  }
  return loaded;
}

CameraSource::CameraSource(const CameraRequest& request, FrameAttributes attributes)
    : camera_(request.config), count_(request.frames), attributes_(std::move(attributes)) {}

FrameName CameraSource::name(std::size_t index) const {
  return {concat(kCameraInput, " frame ", index), camera_frame_stem(index), ".png", {}};
}

SourceFrame CameraSource::load(std::size_t index) const {
  devhost::CameraFrame made = camera_.frame(static_cast<unsigned>(index));
  Image pixels{made.disparity.width, made.disparity.height, std::exchange(made.disparity.pixels, {})};
  Image truth{pixels.width, pixels.height, std::move(made.truth)};
  FrameAttributes attributes = attributes_;
  if (!attributes.camera) attributes.camera = std::move(made.disparity);
  return {describe_frame(std::move(pixels), attributes), std::move(truth)};
}

}  // namespace kit
