#ifndef KIT_FRAME_DEPTH_READER_H
#define KIT_FRAME_DEPTH_READER_H

#include "disparity_code.h"
#include "kit/frame/frame.h"
#include "kit/frame/pixel_reader.h"

namespace kit {

/// The depth of a frame's pixels, of disparity by the frame's geometry.
class DepthReader {
 public:
  explicit DepthReader(const FrameView& frame);

  /// 0 for an invalid pixel and a disparity that no depth has.
  double millimetres(std::uint16_t pixel) const;

 private:
  PixelReader reader_;
  devhost::DisparityCode code_;
  bool is_disparity_;
  int confidence_bits_;
  double value_scale_;
  double focal_baseline_;  ///< millimetres x pixels
};

}  // namespace kit

#endif
