#ifndef KIT_IMAGE_SAMPLES_H
#define KIT_IMAGE_SAMPLES_H

#include <optional>

#include "kit/common/files.h"
#include "kit/image/image.h"

namespace kit {

enum class ByteOrder { little, big };
/// Samples as files hold them.
enum class SampleType { u16, i16, f32, f64 };
std::size_t sample_bytes(SampleType type);

/// What files don't say themselves.
struct ReadOptions {
  Size size = {};  ///< of raw images
  ByteOrder raw_order = ByteOrder::little;
  std::optional<double> units_a_metre =
      {};  ///< floating-point samples are metres; nothing: they are refused
};

/// Images of one size, one after the other without gaps.
struct SampleLayout {
  std::uint64_t width = 0;
  std::uint64_t height = 0;
  std::uint64_t count = 1;
  bool stack = false;  ///< a stack even where it has one image
  SampleType type = SampleType::u16;
  ByteOrder order = ByteOrder::little;
  std::uint16_t most = 65535;  ///< that a sample may be

  /// @throws Error as count_pixels()
  std::size_t image_bytes() const { return count_pixels(width, height) * sample_bytes(type); }
};

/// The image of exactly these bytes. Metres become units; what is not above 0, not finite or not a number becomes a hole.
/// @throws Error as make_image(), naming the number of bytes found and expected, or a sample that 16 bits cannot hold
Image read_samples(ByteView bytes, const SampleLayout& layout, const ReadOptions& options);
void append_samples(const ImageView& image, ByteOrder order, Bytes& bytes);

}  // namespace kit

#endif
