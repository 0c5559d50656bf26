#include "kit/image/image_stream.h"

#include <algorithm>
#include <utility>

#include "kit/common/error.h"

namespace kit {

namespace {

/// Takes memory as the bytes come, whatever their number is said to be.
Bytes read_up_to(ByteStream& stream, std::size_t count) {
  Bytes bytes;
  while (bytes.size() < count) {
    constexpr std::size_t step = std::size_t{1} << 20;
    const std::size_t size = bytes.size(), wanted = std::min(count - size, std::max(step, size));
    bytes.resize(size + wanted);
    const std::size_t got = stream.read(std::span(bytes).subspan(size));
    bytes.resize(size + got);
    if (got < wanted) break;
  }
  return bytes;
}

}  // namespace

ImageStreamReader::ImageStreamReader(ByteStream& stream, const Codec& codec, const ReadOptions& options,
                                     std::string label)
    : stream_(stream), codec_(codec), options_(options), label_(std::move(label)) {}

std::optional<Image> ImageStreamReader::next() {
  try {
    auto image = read_next();
    if (image) ++count_;
    return image;
  } catch (const Error& problem) {
    throw Error(problem.kind(), concat(label_, " frame ", count_, ": ", problem.what()), problem.place());
  }
}

std::optional<Image> ImageStreamReader::read_next() {
  if (left_ == 0) {
    if (stream_.at_end()) return std::nullopt;
    layout_ = codec_.header->read(stream_, options_);
    left_ = layout_.count;
    if (left_ == 0) fail("is a stack of no images");
  }
  const std::size_t expected = layout_.image_bytes();
  const Size size{static_cast<std::uint32_t>(layout_.width), static_cast<std::uint32_t>(layout_.height)};
  if (options_.size != Size{} && size != options_.size) {
    fail("has ", size.width, 'x', size.height, " pixels; expected ", options_.size.width, 'x',
         options_.size.height);
  }
  const Bytes bytes = read_up_to(stream_, expected);
  if (bytes.size() < expected) {
    fail("is truncated: ", bytes.size(), " of ", expected, " bytes came for ", size.width, 'x',
         size.height, " pixels");
  }
  --left_;
  return read_samples(bytes, layout_, options_);
}

Bytes encode_for_stream(const Codec& codec, const ImageView& image, ByteOrder raw_order) {
  SampleLayout layout{.width = image.width, .height = image.height};
  Bytes bytes = codec.header->write(layout);
  append_samples(image, codec.needs_size ? raw_order : codec.header->order, bytes);
  return bytes;
}

}  // namespace kit
