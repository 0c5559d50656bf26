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

SourceFrame load_files(const std::vector<fs::path>& files, const Size& raw_size,
                       const FrameAttributes& attributes) {
  SourceFrame loaded{describe_frame(read_image(files[0], raw_size), attributes), std::nullopt};
  if (files.size() == 1) return loaded;
  const Frame& frame = loaded.frame;
  const Image& truth = loaded.truth.emplace(read_image(files[1], raw_size));
  if (truth.width != frame.width || truth.height != frame.height) {
    fail(files[1].string(), ": is ", truth.width, "x", truth.height, "; expected ", frame.width, "x",
         frame.height, ", the size of ", files[0].string());
  }
  return loaded;
}

}  // namespace

FrameSource file_source(const std::vector<fs::path>& files, const std::vector<fs::path>& truth,
                        const Size& raw_size, const FrameAttributes& attributes) {
  std::vector<FrameName> names;
  for (const fs::path& file : files) {
    names.push_back({file.string(), file.stem().string(), file.extension().string(), {file}});
    if (!truth.empty()) names.back().files.push_back(truth_of(file, truth));
  }
  return {names, [=](std::size_t index) { return load_files(names[index].files, raw_size, attributes); }};
}

FrameSource camera_source(const CameraRequest& request, const FrameAttributes& attributes) {
  FrameSource source;
  for (std::size_t i = 0; i < request.frames; ++i) {
    source.names.push_back({concat(kCameraInput, " frame ", i), camera_frame_stem(i), ".png", {}});
  }
  source.load = [camera = devhost::VirtualCamera(request.config), attributes](std::size_t index) {
    devhost::CameraFrame made = camera.frame(static_cast<unsigned>(index));
    Image pixels{made.disparity.width, made.disparity.height, std::exchange(made.disparity.pixels, {})};
    Image truth{pixels.width, pixels.height, std::move(made.truth)};
    FrameAttributes own = attributes;
    if (!own.camera) own.camera = std::move(made.disparity);
    return SourceFrame{describe_frame(std::move(pixels), own), std::move(truth)};
  };
  return source;
}

}  // namespace kit
