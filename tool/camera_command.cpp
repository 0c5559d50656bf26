#include <ostream>

#include "commands.h"
#include "kit/common/error.h"
#include "kit/frame/camera_file.h"
#include "kit/image/codec.h"
#include "kit/pipeline/frame_source.h"
#include "progress.h"

namespace zvfilter {

namespace fs = std::filesystem;

namespace {

/// A recording is never mixed with another: neither the frames nor their camera.json would be right.
void expect_no_recording(const fs::path& folder) {
  std::error_code none;
  for (const auto& entry : fs::directory_iterator(folder, none)) {
    const std::string name = entry.path().filename().string();
    if (name != kit::kCameraFile &&
        !(name.starts_with(kit::kCameraFramePrefix) && name.ends_with(".png")))
      continue;
    kit::fail(entry.path().string(), ": belongs to another recording; expected a folder without one");
  }
}

void write_frames(const kit::FrameSource& source, const fs::path& folder, const fs::path& truth,
                  kit::Durability durability) {
  expect_no_recording(folder);
  expect_no_recording(truth);
  kit::make_folder(truth);
  Progress progress(source.names.size());
  std::string camera;
  for (std::size_t i = 0; i < source.names.size(); ++i) {
    const kit::SourceFrame made = source.load(i);
    if (i == 0) camera = kit::camera_json(made.frame);
    const std::string name = source.names[i].stem + ".png";
    kit::write_whole(folder / name, kit::encode_png(kit::image_of(made.frame)), durability);
    kit::write_whole(truth / name, kit::encode_png(*made.truth), durability);
    progress.show(i + 1);
  }
  kit::write_text(folder / kit::kCameraFile, camera, kit::Durability::synced);
}

}  // namespace

void camera_command(const CameraCommandOptions& options, std::ostream& out) {
  if (options.output.empty()) kit::refuse("the folder for the frames has no name");
  const kit::CameraRequest request = kit::make_camera_request(options.settings);
  const fs::path folder = options.output, truth = folder / "truth";
  const kit::FrameSource source = kit::camera_source(request, {});
  write_frames(source, folder, truth, options.sync ? kit::Durability::synced : kit::Durability::buffered);
  out << request.frames << (request.frames == 1 ? " frame" : " frames") << " of " << request.config.width
      << 'x' << request.config.height << " and camera.json in " << kit::printable(folder.string())
      << ", true depth in " << kit::printable(truth.string()) << '\n';
}

}  // namespace zvfilter
