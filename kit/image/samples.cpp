#include "kit/image/samples.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

#include "kit/common/error.h"

namespace kit {

namespace {

constexpr ByteOrder kNative =
    std::endian::native == std::endian::little ? ByteOrder::little : ByteOrder::big;

std::uint16_t swapped(std::uint16_t value) { return static_cast<std::uint16_t>(value << 8 | value >> 8); }

template <typename Number>
Number number_at(const unsigned char* bytes, ByteOrder order) {
  unsigned char ordered[sizeof(Number)];
  std::copy_n(bytes, sizeof ordered, ordered);
  if (order != kNative) std::reverse(std::begin(ordered), std::end(ordered));
  Number number{};
  std::memcpy(&number, ordered, sizeof number);
  return number;
}

std::string place(std::size_t index, std::uint32_t width) {
  return concat(" in row ", index / width, ", column ", index % width);
}

void read_words(ByteView bytes, const SampleLayout& layout, Image& image) {
  std::memcpy(image.pixels.data(), bytes.data(), bytes.size());
  if (layout.order != kNative)
    std::transform(image.pixels.begin(), image.pixels.end(), image.pixels.begin(), swapped);
  const auto largest_allowed = layout.type == SampleType::i16 ? std::uint16_t{32767} : layout.most;
  const auto over = std::find_if(image.pixels.begin(), image.pixels.end(),
                                 [&](std::uint16_t pixel) { return pixel > largest_allowed; });
  if (over == image.pixels.end()) return;
  const std::string where = place(static_cast<std::size_t>(over - image.pixels.begin()), image.width);
  if (layout.type == SampleType::i16)
    fail("has the negative value ", static_cast<std::int16_t>(*over), where, "; expected 0 to 32767");
  fail("has a pixel of ", *over, where, " above its maximum value ", layout.most);
}

template <typename Number>
void read_metres(ByteView bytes, ByteOrder order, double units_a_metre, Image& image) {
  for (std::size_t i = 0; i < image.pixels.size(); ++i) {
    const double metres = number_at<Number>(bytes.data() + i * sizeof(Number), order);
    if (!std::isfinite(metres) || metres <= 0) continue;
    const double units = std::round(metres * units_a_metre);
    if (units > 65535) {
      fail("has ", metres, " m", place(i, image.width), ", which is ", number_text(units),
           " units; 16 bits hold at most 65535, so a unit has to be larger (--value-scale)");
    }
    image.pixels[i] = static_cast<std::uint16_t>(units);
  }
}

}  // namespace

std::size_t sample_bytes(SampleType type) {
  return type == SampleType::f64 ? 8 : type == SampleType::f32 ? 4 : 2;
}

Image read_samples(ByteView bytes, const SampleLayout& layout, const ReadOptions& options) {
  const std::size_t expected = layout.image_bytes();
  if (bytes.size() != expected) {
    fail(bytes.size() < expected ? "is truncated: " : "is too long: ", bytes.size(),
         " bytes of pixels, expected ", expected, " for ", layout.width, "x", layout.height);
  }
  Image image = make_image(layout.width, layout.height);
  switch (layout.type) {
    case SampleType::f32:
      read_metres<float>(bytes, layout.order, options.units_a_metre.value(), image);
      break;
    case SampleType::f64:
      read_metres<double>(bytes, layout.order, options.units_a_metre.value(), image);
      break;
    default:
      read_words(bytes, layout, image);
  }
  return image;
}

void append_samples(const ImageView& image, ByteOrder order, Bytes& bytes) {
  const std::size_t start = bytes.size();
  bytes.resize(start + image.pixels.size_bytes());
  if (order == kNative) {
    std::memcpy(bytes.data() + start, image.pixels.data(), image.pixels.size_bytes());
    return;
  }
  unsigned char* to = bytes.data() + start;
  for (const std::uint16_t pixel : image.pixels) {
    const std::uint16_t other = swapped(pixel);
    std::memcpy(to, &other, sizeof other);
    to += sizeof other;
  }
}

}  // namespace kit
