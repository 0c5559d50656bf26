#ifndef KIT_FRAME_CAMERA_FILE_H
#define KIT_FRAME_CAMERA_FILE_H

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kit/frame/frame.h"
#include "kit/input/input.h"

namespace kit {

/// What a recording's folder calls the file.
inline constexpr const char* kCameraFile = "camera.json";

/// What the frames of a camera carry beside size and pixels, all of it known, as a JSON text with the fields of read_input().
std::string camera_json(const Frame& camera);

/// The reverse; fields may be missing, and the size is the frames' own.
/// @param label of the text in messages
/// @throws Error naming the field that is wrong and what it may be
Input parse_camera_json(std::string_view text, const std::string& label);
Input read_camera_file(const std::filesystem::path& file);

/// The camera.json that lies beside the files, be it right or not; nothing where there is none.
/// @throws Error where files of several folders have several
std::optional<std::filesystem::path> find_camera_file(const std::vector<std::filesystem::path>& files);

}  // namespace kit

#endif
