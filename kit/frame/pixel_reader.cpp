#include "kit/frame/pixel_reader.h"

#include <algorithm>

#include "disparity_code.h"

namespace kit {

PixelReader::PixelReader(const FrameView& frame)
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

std::uint64_t PixelReader::count_valid(std::span<const std::uint16_t> pixels) const {
  // Each comparison alone in its loop, which is then one of vectors.
  const auto count = [&](const auto& is_valid) {
    std::uint64_t total = 0;
    while (!pixels.empty()) {
      constexpr std::size_t most = UINT16_MAX;  // whose number a pixel's own type holds
      const std::size_t size = std::min(pixels.size(), most);
      std::uint16_t some = 0;
      for (const std::uint16_t pixel : pixels.first(size)) {
        some = static_cast<std::uint16_t>(
            some + is_valid(static_cast<std::uint16_t>(pixel >> confidence_bits_)));
      }
      total += some;
      pixels = pixels.subspan(size);
    }
    return total;
  };
  switch (code_) {
    case Code::two_complement:
      return count([](std::uint16_t code) { return code != ZV_DISPARITY_UNMATCHED_SIGNED; });
    case Code::depth:
      return count([](std::uint16_t code) { return code != 0; });
    default:
      return count([](std::uint16_t code) { return code != 0 && code <= ZV_DISPARITY_CODE_MAX; });
  }
}

std::uint64_t count_valid(const FrameView& frame) { return PixelReader(frame).count_valid(frame.pixels); }

}  // namespace kit
