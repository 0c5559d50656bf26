#include "kit/frame/pixel_reader.h"

#include "disparity_code.h"

namespace kit {

PixelReader::PixelReader(const Frame& frame)
    : code_(frame.pixel_type != ZV_PIXEL_TYPE_DISPARITY  ? Code::depth
            : frame.disparity.packMode == 1              ? Code::growing
            : devhost::has_signed_codes(frame.disparity) ? Code::two_complement
                                                         : Code::falling),
      confidence_bits_(frame.format == ZV_FORMAT_PACKED_CODE ? 4 : 0) {}

std::optional<std::int32_t> PixelReader::distance_rank(std::uint16_t pixel) const {
  const std::int32_t code = pixel >> confidence_bits_;
  if (code_ == Code::two_complement) {
    if (code == ZV_DISPARITY_UNMATCHED_SIGNED) return std::nullopt;
    const std::int32_t low = code & 0x3FFF;
    return low < ZV_DISPARITY_UNMATCHED_SIGNED ? -low : 0x4000 - low;
  }
  if (code == 0 || (code_ != Code::depth && code > ZV_DISPARITY_CODE_MAX)) return std::nullopt;
  return code_ == Code::falling ? -code : code;
}

std::uint64_t count_valid(const Frame& frame) {
  const PixelReader reader(frame);
  std::uint64_t count = 0;
  for (const std::uint16_t pixel : frame.pixels) count += reader.distance_rank(pixel).has_value();
  return count;
}

}  // namespace kit
