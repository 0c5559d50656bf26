#ifndef KIT_FRAME_PIXEL_READER_H
#define KIT_FRAME_PIXEL_READER_H

#include <cstdint>
#include <optional>

#include "kit/frame/frame.h"

namespace kit {

/// What a frame's pixels say about the distance.
class PixelReader {
 public:
  explicit PixelReader(const FrameView& frame);

  /// A number that grows with the distance, from -65535 to 65535: the depth itself where the frame is
  /// depth. Nothing for an invalid pixel.
  std::optional<std::int32_t> distance_rank(std::uint16_t pixel) const;

  /// How many pixels have a distance.
  std::uint64_t count_valid(std::span<const std::uint16_t> pixels) const;

 private:
  enum class Code { depth, growing, falling, two_complement };  // with the distance
  Code code_;
  int confidence_bits_;  // below the code or depth
};

std::uint64_t count_valid(const FrameView& frame);

}  // namespace kit

#endif
