#include "frame_image.h"

#include <utility>

#include "disparity_code.h"

namespace zvfilter {

namespace {

constexpr std::int32_t kLargestCode = 65531;  // those above are marks
constexpr std::int32_t kInvalidSigned = 8192;

}  // namespace

FrameImage::FrameImage(devhost::FrameTraits frame) : attributes(std::move(frame)) {
  image = {attributes.width, attributes.height, std::exchange(attributes.pixels, {})};
}

PixelReader::PixelReader(const devhost::FrameTraits& frame)
    : code_(frame.pixel_type != ZV_PIXEL_TYPE_DISPARITY  ? Code::depth
            : frame.disparity.packMode == 1              ? Code::growing
            : devhost::has_signed_codes(frame.disparity) ? Code::two_complement
                                                         : Code::falling),
      confidence_bits_(frame.format == ZV_FORMAT_PACKED_CODE ? 4 : 0) {}

std::optional<std::int32_t> PixelReader::distance_rank(std::uint16_t pixel) const {
  const std::int32_t code = pixel >> confidence_bits_;
  if (code_ == Code::two_complement) {
    if (code == kInvalidSigned) return std::nullopt;
    const std::int32_t low = code & 0x3FFF;
    return low < kInvalidSigned ? -low : 0x4000 - low;
  }
  if (code == 0 || (code_ != Code::depth && code > kLargestCode)) return std::nullopt;
  return code_ == Code::falling ? -code : code;
}

std::uint64_t count_valid(const FrameImage& frame) {
  const PixelReader reader(frame.attributes);
  std::uint64_t count = 0;
  for (const std::uint16_t pixel : frame.image.pixels) count += reader.distance_rank(pixel).has_value();
  return count;
}

}  // namespace zvfilter
