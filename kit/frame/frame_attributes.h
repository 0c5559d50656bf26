#ifndef KIT_FRAME_FRAME_ATTRIBUTES_H
#define KIT_FRAME_FRAME_ATTRIBUTES_H

#include <cstdint>
#include <optional>

#include "kit/frame/frame.h"

namespace kit {

/// What a frame carries beside its pixels, and an image file does not: a camera's attributes and what
/// replaces some of them.
struct FrameAttributes {
  /// The camera that is assumed where the geometry is not given.
  static constexpr double kNominalBaseline = 50;        ///< millimetres
  static constexpr double kNominalFocalPerWidth = 0.7;  ///< focal length in pixels over the width
  static constexpr int kDisparityIntegerBits = 8;

  std::optional<Frame> camera;       ///< without pixels; nothing: the nominal dual camera
  std::optional<float> value_scale;  ///< from a pixel's value to millimetres
  std::optional<std::uint8_t> bits;  ///< of a pixel and of a disparity code
  std::optional<std::int32_t> pixel_type;
  std::optional<double> baseline;  ///< millimetres
  std::optional<double> fx;        ///< pixels
};

/// The image as a frame of the camera.
Frame describe_frame(Image image, const FrameAttributes& attributes);

}  // namespace kit

#endif
