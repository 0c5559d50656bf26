/// A virtual stereo camera: disparity frames with the faults of real ones, and the true depth with them.
///
/// A scene is rendered for two cameras and the two images are matched, so the frames have fattened edges,
/// occlusion bands, a blind left border, speckles, holes and noise that grows with distance because their
/// causes are there; nothing is painted in.
#ifndef FILTERPROCESSOR_HOST_VIRTUAL_CAMERA_H
#define FILTERPROCESSOR_HOST_VIRTUAL_CAMERA_H

#include <cstdint>
#include <optional>
#include <vector>

#include "camera_faults.h"
#include "dev_host.h"

namespace devhost {

/// What of a scene moves.
enum class Motion {
  still,
  objects,  ///< a box and a ball, 2 to 4 mm a frame
  camera,   ///< they and the camera, 6 mm a frame to one side, 30 frames long, and back
};

struct CameraConfig {
  std::uint32_t width = 640;   ///< 64 to 4096
  std::uint32_t height = 400;  ///< 48 to 4096
  std::uint64_t seed = 1;      ///< of the scene and of the noise
  float baseline = 50;         ///< millimetres, 5 to 500
  double fx = 0;               ///< pixels, 0.25 to 4 times the width; 0 is 0.7 times the width
  std::uint8_t pack_mode = 2;  ///< 1, 2 or 3 with two cameras; 1, 2 or 4 with one
  /// 11 to 16, and at most 12 in format 34. With one camera, format 0 needs 14 in pack mode 2 and 16 in
  /// pack mode 4, whose marks of invalid pixels are that long. 0 chooses a natural one.
  std::uint8_t bit_size = 0;
  std::int32_t format = 0;  ///< 0 (16 bits a pixel) or 34 (a 12-bit code above 4 bits of confidence)
  /// Metadata item 32, -128 to 128: the disparity missing from every code. The record of one camera
  /// doesn't know it, so its codes stay whole.
  std::optional<std::int64_t> disparity_correction = {};
  bool dual = true;  ///< whether the record is that of two cameras
  Motion motion = Motion::objects;
  float texture = 1;  ///< contrast of textures and projected dots, 0 to 1
  CameraFaults faults = {};
};

struct CameraFrame {
  FrameTraits disparity;             ///< ready for make_frame(), width x height pixels
  std::vector<std::uint16_t> truth;  ///< depth of the left view, mm; 0 where no surface is in range
};

/// Frames are functions of configuration and index alone: any order, any thread, any machine.
class VirtualCamera {
 public:
  static constexpr double kNearest = 400, kFarthest = 5000;  ///< range in millimetres

  /// Throws std::invalid_argument with the name of the bad field and what it may be.
  explicit VirtualCamera(const CameraConfig& config);

  /// Frame `index` of the scene. Its record and its value scale make depth millimetres.
  CameraFrame frame(unsigned index) const;

  const CameraConfig& config() const { return config_; }  ///< with every choice made
  const ZVDisparityParam& parameters() const { return parameters_; }
  /// The stored pixel of a disparity that was not found.
  std::uint16_t invalid_pixel() const;
  /// Columns at the left border for which the right image has no counterpart.
  std::uint32_t blind_columns() const { return disparities_; }

 private:
  CameraConfig config_;
  ZVDisparityParam parameters_ = {};
  std::uint32_t disparities_ = 0;  // searched
};

}  // namespace devhost

#endif
