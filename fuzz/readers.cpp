// The file readers. The first byte chooses one: c for camera.json, p, g, n and r for PNG, PGM,
// NumPy and raw images, all others for PNG with its checksums put right. What can be read says the same
// when written and read again.
#include <png.h>
#include <zlib.h>

#include "kit/common/error.h"
#include "kit/frame/camera_file.h"
#include "kit/image/codec.h"
#include "target.h"

namespace filterprocessor::fuzz {

namespace {

void read_camera(std::string_view text) {
  kit::Frame camera;
  try {
    camera = kit::parse_camera_json(text, "camera.json");
  } catch (const kit::Error&) {
    return;
  }
  const std::string written = kit::camera_json(camera);
  const kit::Frame again = kit::parse_camera_json(written, "again");
  require(kit::camera_json(again) == written, "a camera says the same when read again");
}

void read_image(std::string_view format, kit::ByteView file, const kit::Size& size) {
  const kit::Codec& codec = *kit::codec_named(format);
  kit::Image image;
  try {
    image = codec.decode(file, size);
  } catch (const kit::Error&) {
    return;
  }
  const kit::Bytes written = codec.encode(image);
  require(codec.decode(written, {image.width, image.height}) == image,
          "an image is the same when read again");
}

/// Gives every chunk the checksum that it needs, so that what stands in it is looked at.
kit::Bytes with_checksums(kit::ByteView file) {
  kit::Bytes bytes(file.begin(), file.end());
  for (std::size_t at = 8; at + 12 <= bytes.size();) {
    const std::size_t length = png_get_uint_32(&bytes[at]);
    if (length > bytes.size() - at - 12) break;
    png_save_uint_32(&bytes[at + 8 + length],
                     static_cast<std::uint32_t>(crc32(0, &bytes[at + 4], static_cast<uInt>(length + 4))));
    at += length + 12;
  }
  return bytes;
}

}  // namespace

void run_input(FuzzInput& input) {
  const auto reader = input.number<char>();
  kit::Size size;
  if (reader == 'r') size = {input.number<std::uint8_t>(), input.number<std::uint32_t>()};
  const auto file = input.take_rest();
  switch (reader) {
    case 'c':
      return read_camera({reinterpret_cast<const char*>(file.data()), file.size()});
    case 'p':
      return read_image("png", file, size);
    case 'g':
      return read_image("pgm", file, size);
    case 'n':
      return read_image("npy", file, size);
    case 'r':
      return read_image("raw", file, size);
    default:
      return read_image("png", with_checksums(file), size);
  }
}

}  // namespace filterprocessor::fuzz
