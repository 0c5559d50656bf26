#ifndef KIT_FRAME_CAMERA_FILE_H
#define KIT_FRAME_CAMERA_FILE_H

#include <filesystem>
#include <string>
#include <string_view>

#include "kit/frame/frame.h"

namespace kit {

/// What the frames of a camera carry beside size and pixels, as a JSON text: format, pixelType, bits,
/// valueScale, intrinsics, disparity (the fields of ZVDisparityParam) and metadata (by item number).
std::string camera_json(const Frame& camera);

/// The reverse; every field has to be there, and no other.
/// @param label of the text in messages
/// @throws Error naming the field that is wrong and what it may be
Frame parse_camera_json(std::string_view text, const std::string& label);
Frame read_camera_file(const std::filesystem::path& file);

}  // namespace kit

#endif
