#ifndef ZVFILTER_FRAME_ATTRIBUTES_H
#define ZVFILTER_FRAME_ATTRIBUTES_H

#include <cstdint>
#include <optional>

#include "dev_host.h"
#include "images/codec.h"

namespace zvfilter {

/// What a frame carries beside its pixels, and an image file does not.
struct FrameAttributes {
  /// The camera that is assumed where the geometry is not given.
  static constexpr double kNominalBaseline = 50;        ///< millimetres
  static constexpr double kNominalFocalPerWidth = 0.7;  ///< focal length in pixels over the width
  static constexpr int kDisparityIntegerBits = 8;

  float value_scale = 1;  ///< from a pixel's value to millimetres
  std::uint8_t bits = 16;
  std::int32_t pixel_type = ZV_PIXEL_TYPE_DEPTH;
  std::optional<double> baseline;  ///< millimetres
  std::optional<double> fx;        ///< pixels
};

/// The image as a depth frame of a dual camera.
devhost::FrameSpec describe_frame(Image image, const FrameAttributes& attributes);

}  // namespace zvfilter

#endif
