// Reads PNG through libpng, which leaves a call that fails by a jump. Every function that such a jump can leave
// holds plain values only; what owns memory lives in the callers.
#include <bit>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <png.h>

#include "kit/common/error.h"
#include "kit/image/png.h"

namespace kit {

namespace {

struct Message {
  char text[160] = "unknown error";
};

extern "C" {

static void on_error(png_structp png, png_const_charp text) {
  auto* message = static_cast<Message*>(png_get_error_ptr(png));
  std::snprintf(message->text, sizeof message->text, "%s", text);
  png_longjmp(png, 1);
}

static void on_warning(png_structp, png_const_charp) {}

static void on_read(png_structp png, png_bytep to, std::size_t size) {
  auto* rest = static_cast<ByteView*>(png_get_io_ptr(png));
  if (size > rest->size()) png_error(png, "the file ends early");
  std::memcpy(to, rest->data(), size);
  *rest = rest->subspan(size);
}

}  // extern "C"

struct Reader {
  explicit Reader(ByteView file)
      : rest(file), png(png_create_read_struct(PNG_LIBPNG_VER_STRING, &message, on_error, on_warning)) {
    if (png == nullptr) fail("cannot be read: libpng does not start");
    info = png_create_info_struct(png);
    png_set_read_fn(png, &rest, on_read);
    // What stands beside the pixels is passed over: a damaged file may claim any length for it.
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
  }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;
  ~Reader() { png_destroy_read_struct(&png, &info, nullptr); }

  Message message;
  ByteView rest;
  png_structp png;
  png_infop info = nullptr;
};

bool read_header(png_structp png, png_infop info) {
  if (setjmp(png_jmpbuf(png)) != 0) return false;
  png_read_info(png, info);
  return true;
}

bool read_rows(png_structp png, png_infop info, png_bytepp rows) {
  if (setjmp(png_jmpbuf(png)) != 0) return false;
  if (std::endian::native == std::endian::little) png_set_swap(png);
  png_read_image(png, rows);
  png_read_end(png, info);
  return true;
}

// By the number that stands in the file.
constexpr const char* kColorNames[] = {
    "grayscale", "", "colour", "palette colour", "grayscale with alpha", "", "colour with alpha"};

}  // namespace

Image decode_any_png(ByteView file) {
  Reader reader(file);
  const auto fail_damaged = [&] { fail("is damaged or truncated: ", reader.message.text); };
  if (!read_header(reader.png, reader.info)) fail_damaged();
  const int depth = png_get_bit_depth(reader.png, reader.info);
  const int color = png_get_color_type(reader.png, reader.info);
  if (depth != 16 || color != PNG_COLOR_TYPE_GRAY) {
    fail("is ", depth, "-bit ", kColorNames[color], "; expected a 16-bit grayscale PNG file");
  }
  const std::uint32_t width = png_get_image_width(reader.png, reader.info);
  const std::uint32_t height = png_get_image_height(reader.png, reader.info);
  constexpr std::size_t kMostPerByte = 1032;  // what a compressed byte can stand for
  if (std::uint64_t{2} * width * height / kMostPerByte > file.size()) {
    fail("is truncated: ", file.size(), " bytes cannot hold ", width, "x", height, " pixels");
  }
  Image image = make_image(width, height);
  std::vector<png_bytep> rows(image.height);
  for (std::size_t y = 0; y < rows.size(); ++y) {
    rows[y] = reinterpret_cast<png_bytep>(image.pixels.data() + y * image.width);
  }
  if (!read_rows(reader.png, reader.info, rows.data())) fail_damaged();
  return image;
}

}  // namespace kit
