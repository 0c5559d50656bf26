#include "kit/frame/depth_reader.h"

namespace kit {

DepthReader::DepthReader(const FrameView& frame)
    : reader_(frame),
      code_(frame.disparity, frame.correction),
      is_disparity_(frame.pixel_type == ZV_PIXEL_TYPE_DISPARITY),
      confidence_bits_(frame.format == ZV_FORMAT_PACKED_CODE ? 4 : 0),
      value_scale_(static_cast<double>(frame.value_scale)),
      focal_baseline_(frame.disparity.fx * static_cast<double>(frame.disparity.baseline) *
                      static_cast<double>(frame.disparity.unit)) {}

double DepthReader::millimetres(std::uint16_t pixel) const {
  const auto rank = reader_.distance_rank(pixel);
  if (!rank) return 0;
  if (!is_disparity_) return *rank * value_scale_;
  const double disparity = code_.disparity(static_cast<std::uint16_t>(pixel >> confidence_bits_));
  return disparity > 0 ? focal_baseline_ / disparity : 0;
}

}  // namespace kit
