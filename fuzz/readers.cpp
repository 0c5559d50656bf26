// The readers. The first byte chooses one: c for camera.json, s for schemas, p, g, n, r and t for PNG, PGM, NumPy, raw and
// TIFF images, G, N and R for streams of them, N also for metres, T for TIFF stacks, all others for PNG with its checksums
// put right. What can be read says the same when written and read again.
#include <png.h>
#include <zlib.h>

#include "kit/common/error.h"
#include "kit/frame/camera_file.h"
#include "kit/image/image_stream.h"
#include "kit/image/tiff.h"
#include "kit/schema/schema.h"
#include "target.h"

namespace filterprocessor::fuzz {

namespace {

/// What `read` gives, or nothing where it refuses its input.
auto accepted(const auto& read) -> std::optional<decltype(read())> {
  try {
    return read();
  } catch (const kit::Error&) {
    return {};
  }
}

void read_camera(std::string_view text) {
  const auto camera = accepted([&] { return kit::parse_camera_json(text, "camera.json"); });
  if (!camera) return;
  const std::string written = kit::input_json(*camera, false).dump();
  const kit::Input again = kit::parse_camera_json(written, "again");
  require(kit::input_json(again, false).dump() == written, "a camera says the same when read again");
}

void read_schema(std::string_view text) {
  const auto parameters = accepted([&] { return kit::parse_schema(text); });
  if (!parameters) return;
  std::string written;
  for (const kit::SchemaParameter& p : *parameters) {
    for (const std::string* field : {&p.name, &p.type, &p.min, &p.max, &p.step, &p.default_value})
      written += *field + ", ";
    written += p.description + '\n';
  }
  require(kit::parse_schema(written) == parameters, "a schema says the same when read again");
}

void read_image(std::string_view format, kit::ByteView file, const kit::Size& size) {
  const kit::Codec& codec = *kit::codec_named(format);
  const auto image = accepted([&] { return codec.decode(file, size); });
  if (!image) return;
  require(codec.decode(codec.encode(*image), {image->width, image->height}) == *image,
          "an image is the same when read again");
}

/// A stream gives whole images or none, as many as its writer put into it.
void read_stream(std::string_view format, kit::ByteView bytes, const kit::ReadOptions& options) {
  const kit::Codec& codec = *kit::codec_named(format);
  kit::ViewStream stream(bytes);
  kit::ImageStreamReader reader(stream, codec, options, "stream");
  std::size_t count = 0;
  try {
    while (const auto image = reader.next()) {
      require(++count == reader.count(), "a stream counts its images");
      const kit::Bytes frame = kit::encode_for_stream(codec, *image, options.raw_order);
      kit::ViewStream again(frame);
      kit::ReadOptions units = options;
      units.units_a_metre.reset();
      require(kit::ImageStreamReader(again, codec, units, "again").next() == image,
              "a streamed image is the same when read again");
    }
  } catch (const kit::Error&) {
  }
}

void read_pages(kit::ByteView file) {
  try {
    std::size_t read = 0;
    constexpr std::size_t most = 16;
    for (const std::uint64_t page : kit::TiffReader(kit::view_of(file)).pages()) {
      if (++read > most) break;
      require(!kit::TiffReader(kit::view_of(file)).read_page(page).pixels.empty(), "a page has pixels");
    }
  } catch (const kit::Error&) {
  }
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

void run_input(Source& input) {
  const auto reader = input.number<char>();
  kit::Size size;
  if (reader == 'r' || reader == 'R')
    size = {input.number<std::uint8_t>(), input.number<std::uint32_t>()};
  const auto file = input.take_rest();
  const std::string_view text(reinterpret_cast<const char*>(file.data()), file.size());
  struct Reader {
    char letter;
    std::string_view format;
  };
  for (const auto& [letter, format] :
       {Reader{'p', "png"}, {'g', "pgm"}, {'n', "npy"}, {'r', "raw"}, {'t', "tiff"}}) {
    if (reader == letter) return read_image(format, file, size);
  }
  switch (reader) {
    case 'c':
      return read_camera(text);
    case 's':
      return read_schema(text);
    case 'G':
      return read_stream("pgm", file, {});
    case 'N':
      read_stream("npy", file, {.units_a_metre = 1000});
      return read_stream("npy", file, {});
    case 'R':
      return size == kit::Size{} ? void() : read_stream("raw", file, {.size = size});
    case 'T':
      return read_pages(file);
    default:
      return read_image("png", with_checksums(file), size);
  }
}

}  // namespace filterprocessor::fuzz
