#include "kit/pipeline/frame_source.h"

#include <algorithm>
#include <memory>
#include <mutex>
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

using ImageFiles = std::vector<ImageFile>;

/// A frame's image and, where there is one, that of its truth.
struct FrameImages {
  std::shared_ptr<const ImageFile> image;
  std::shared_ptr<const ImageFile> truth;
  std::size_t number;
};

SourceFrame load_images(const FrameImages& images, const FrameAttributes& attributes) {
  SourceFrame loaded{describe_frame(images.image->read(images.number), attributes), std::nullopt};
  if (!images.truth) return loaded;
  const Frame& frame = loaded.frame;
  const Image& truth = loaded.truth.emplace(images.truth->read(images.number));
  if (truth.width != frame.width || truth.height != frame.height) {
    fail(images.truth->path().string(), ": is ", truth.width, "x", truth.height, "; expected ",
         frame.width, "x", frame.height, ", the size of ", images.image->path().string());
  }
  return loaded;
}

[[noreturn]] void fail_size(const std::string& label, const Size& size, const Size& first) {
  fail(label, ": has ", size.width, 'x', size.height, " pixels; the frames before it have ", first.width,
       'x', first.height);
}

/// Files that say their size do it before anything is filtered.
void expect_one_size(const ImageFiles& files) {
  std::optional<Size> first;
  for (const ImageFile& file : files) {
    const std::optional<Size> size = file.size();
    if (first && size && *size != *first) fail_size(file.path().string(), *size, *first);
    if (!first) first = size;
  }
}

/// The size of a sequence, which is that of its first frame, whichever is loaded first.
struct SequenceSize {
  std::once_flag known;
  Size size;
};

FrameName name_of(const ImageFile& file, std::size_t number) {
  const fs::path& path = file.path();
  FrameName name{path.string(), path.stem().string(), path.extension().string(), {path}};
  name.number = number;
  name.count = file.count();
  name.stack = file.is_stack();
  if (!name.stack) return name;
  const std::string digits = std::to_string(number);
  const std::size_t width = std::max(std::to_string(file.count() - 1).size(), digits.size());
  name.label += concat(" frame ", number);
  name.stem += concat('_', std::string(width - digits.size(), '0'), digits);
  return name;
}

}  // namespace

FrameSource file_source(const std::vector<fs::path>& files, const std::vector<fs::path>& truth,
                        const ReadOptions& options, const FrameAttributes& attributes) {
  ReadOptions truth_options = options;
  truth_options.units_a_metre.reset();
  FrameSource source;
  std::vector<FrameImages> frames;
  ImageFiles opened;
  for (const fs::path& path : files) {
    const auto file = std::make_shared<const ImageFile>(path, options);
    std::shared_ptr<const ImageFile> true_file;
    if (!truth.empty()) {
      true_file = std::make_shared<const ImageFile>(truth_of(path, truth), truth_options);
      if (true_file->count() != file->count()) {
        fail(true_file->path().string(), ": holds ", true_file->count(), " images; expected ",
             file->count(), ", as many as ", path.string());
      }
    }
    opened.push_back(*file);
    for (std::size_t i = 0; i < file->count(); ++i) {
      source.names.push_back(name_of(*file, i));
      if (true_file) source.names.back().files.push_back(true_file->path());
      frames.push_back({file, true_file, i});
    }
  }
  expect_one_size(opened);
  source.load = [frames = std::move(frames), names = source.names, attributes,
                 expected = std::make_shared<SequenceSize>()](std::size_t index) {
    SourceFrame loaded = load_images(frames[index], attributes);
    const Size size{loaded.frame.width, loaded.frame.height};
    std::call_once(expected->known, [&] {
      const Image first = index == 0 ? Image() : frames[0].image->read(frames[0].number);
      expected->size = index == 0 ? size : Size{first.width, first.height};
    });
    if (size != expected->size) fail_size(names[index].label, size, expected->size);
    return loaded;
  };
  return source;
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
    if (!own.camera) own.camera = Input{std::move(made.disparity), true, true};
    return SourceFrame{describe_frame(std::move(pixels), own), std::move(truth)};
  };
  return source;
}

}  // namespace kit
