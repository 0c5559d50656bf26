#include "kit/frame/camera_file.h"

#include <algorithm>

#include "kit/common/error.h"
#include "kit/common/files.h"

namespace kit {

std::string camera_json(const Frame& camera) {
  return input_json({camera, true, true}, false).dump(2) + '\n';
}

Input parse_camera_json(std::string_view text, const std::string& label) {
  const Json json = parse_json_object(text, label);
  const JsonObject file(json, label + ": ");
  Input camera = read_input(file);
  if (camera.has_size()) file.fail_field("width", "is unknown; the frames say their size");
  return camera;
}

Input read_camera_file(const std::filesystem::path& file) {
  return parse_camera_json(read_text(file, kMostJsonBytes), file.string());
}

std::optional<std::filesystem::path> find_camera_file(const std::vector<std::filesystem::path>& files) {
  std::vector<std::filesystem::path> folders, found;
  for (const std::filesystem::path& file : files) {
    const std::filesystem::path folder = file.parent_path();
    if (std::find(folders.begin(), folders.end(), folder) != folders.end()) continue;
    folders.push_back(folder);
    // A link that leads nowhere is a camera file that cannot be read, not none.
    std::error_code none;
    const std::filesystem::path camera = folder / kCameraFile;
    if (std::filesystem::exists(std::filesystem::symlink_status(camera, none))) found.push_back(camera);
  }
  if (found.empty()) return std::nullopt;
  if (folders.size() > 1) {
    refuse(found.front().string(), ": is beside some of the files only, which lie in ", folders.size(),
           " folders; say with --camera what is right for all (--camera none: none)");
  }
  return found.front();
}

}  // namespace kit
