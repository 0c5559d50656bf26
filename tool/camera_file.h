#ifndef ZVFILTER_CAMERA_FILE_H
#define ZVFILTER_CAMERA_FILE_H

#include <filesystem>
#include <string>
#include <string_view>

#include "dev_host.h"

namespace zvfilter {

/// What the frames of a camera carry beside size and pixels, as a JSON text: format, pixelType, bits,
/// valueScale, intrinsics, disparity (the fields of ZVDisparityParam) and metadata (by item number).
std::string camera_json(const devhost::FrameTraits& camera);

/// The reverse; every field has to be there, and no other.
/// @param label of the text in messages
/// @throws Failure naming the field that is wrong and what it may be
devhost::FrameTraits parse_camera_json(std::string_view text, const std::string& label);
devhost::FrameTraits read_camera_file(const std::filesystem::path& file);

}  // namespace zvfilter

#endif
