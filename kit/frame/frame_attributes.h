#ifndef KIT_FRAME_FRAME_ATTRIBUTES_H
#define KIT_FRAME_FRAME_ATTRIBUTES_H

#include <cstdint>
#include <optional>

#include "kit/frame/frame.h"
#include "kit/input/input.h"

namespace kit {

/// What a frame carries beside its pixels, and an image file does not: a camera's attributes and what
/// replaces some of them.
struct FrameAttributes {
  /// The camera that is assumed where the geometry is not given.
  static constexpr double kNominalBaseline = 50;        ///< millimetres
  static constexpr double kNominalFocalPerWidth = 0.7;  ///< focal length in pixels over the width

  std::optional<Input> camera;       ///< nothing: depth frames of 16 bits and millimetres
  std::optional<float> value_scale;  ///< from a pixel's value to millimetres
  std::optional<std::uint8_t> bits;  ///< of a pixel and of a disparity code
  std::optional<std::int32_t> pixel_type;
  std::optional<double> baseline;  ///< millimetres
  std::optional<double> fx;        ///< pixels

  bool has_geometry() const { return (camera && camera->has_geometry) || (baseline && fx); }
};

/// What images of this size are. What nobody says of the geometry is that of the nominal camera.
Input describe_input(const Size& size, const FrameAttributes& attributes);

/// The image as such a frame.
Frame describe_frame(Image image, const FrameAttributes& attributes);

}  // namespace kit

#endif
