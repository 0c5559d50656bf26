#ifndef KIT_PIPELINE_CAMERA_OPTIONS_H
#define KIT_PIPELINE_CAMERA_OPTIONS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "virtual_camera.h"

namespace kit {

/// The start of an input that is the virtual camera.
inline constexpr std::string_view kCameraInput = "camera:";

/// What a recording of it consists of.
inline constexpr std::string_view kCameraFramePrefix = "disparity_";

/// What is asked of the virtual camera.
struct CameraRequest {
  devhost::CameraConfig config;
  std::size_t frames = 10;
  bool mono = false;
};

/// An option of the virtual camera, on the command line and in an input.
struct CameraOption {
  std::string_view name;
  std::string_view value_name;  ///< empty: a flag
  std::string_view help;
  std::string_view expected;
  bool (*set)(CameraRequest& request, std::string_view value);
  std::string_view fields;  ///< of the camera's configuration that it sets, and that may not fit others
};
const std::vector<CameraOption>& camera_options();

struct CameraSetting {
  std::string name;
  std::string value;
  std::string typed;  ///< what messages call it
};

/// The settings of "camera:name=value,flag,..."; none in "camera:".
/// @throws Error for a name that is unknown or given twice, and for a value missing or not wanted
std::vector<CameraSetting> parse_camera_input(std::string_view input);

/// A camera with these settings, whose values fit together.
/// @throws Error naming the setting that is wrong and what it may be
CameraRequest make_camera_request(const std::vector<CameraSetting>& settings);

/// "disparity_0007"
std::string camera_frame_stem(std::size_t index);

}  // namespace kit

#endif
