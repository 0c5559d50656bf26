#ifndef ZVFILTER_FRAME_IMAGE_H
#define ZVFILTER_FRAME_IMAGE_H

#include <cstdint>
#include <optional>

#include "dev_host.h"
#include "images/codec.h"

namespace zvfilter {

/// A frame's pixels and what tells their meaning.
struct FrameImage {
  explicit FrameImage(Image pixels) : image(std::move(pixels)) {}
  /// @param frame with width x height pixels
  explicit FrameImage(devhost::FrameTraits frame);

  Image image;
  devhost::FrameTraits attributes;  ///< without pixels
};

/// What a pixel says about the distance.
class PixelReader {
 public:
  explicit PixelReader(const devhost::FrameTraits& frame);

  /// A number that grows with the distance, from -65535 to 65535: the depth itself where the frame is
  /// depth. Nothing for an invalid pixel.
  std::optional<std::int32_t> distance_rank(std::uint16_t pixel) const;

 private:
  enum class Code { depth, growing, falling, two_complement };  // with the distance
  Code code_;
  int confidence_bits_;  // below the code or depth
};

std::uint64_t count_valid(const FrameImage& frame);

}  // namespace zvfilter

#endif
