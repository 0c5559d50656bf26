// PNG through libpng, which leaves a call that fails by a jump. Every function that such a jump can leave
// holds plain values only; what owns memory lives in the callers.
#include <bit>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <png.h>

#include "kit/common/error.h"
#include "kit/image/codec.h"

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

// Counts on past the end of the buffer, so that a picture which does not fit is noticed.
struct Sink {
  unsigned char* data;
  std::size_t capacity;
  std::size_t size;
};

static void on_write(png_structp png, png_bytep from, std::size_t size) {
  auto* sink = static_cast<Sink*>(png_get_io_ptr(png));
  if (sink->size + size <= sink->capacity) std::memcpy(sink->data + sink->size, from, size);
  sink->size += size;
}

static void on_flush(png_structp) {}

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

struct Writer {
  Writer() : png(png_create_write_struct(PNG_LIBPNG_VER_STRING, &message, on_error, on_warning)) {
    if (png == nullptr) fail("cannot be written: libpng does not start");
    info = png_create_info_struct(png);
  }
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;
  ~Writer() { png_destroy_write_struct(&png, &info); }

  Message message;
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

struct Picture {
  std::uint32_t width;
  std::uint32_t height;
  int depth;
  int color;
  const unsigned char* pixels;
  std::size_t stride;
};

bool write_picture(png_structp png, png_infop info, Sink* sink, const Picture* picture) {
  if (setjmp(png_jmpbuf(png)) != 0) return false;
  png_set_write_fn(png, sink, on_write, on_flush);
  png_set_IHDR(png, info, picture->width, picture->height, picture->depth, picture->color,
               PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_set_compression_level(png, 6);
  png_write_info(png, info);
  if (picture->depth == 16 && std::endian::native == std::endian::little) png_set_swap(png);
  for (std::uint32_t y = 0; y < picture->height; ++y) {
    png_write_row(png, picture->pixels + y * picture->stride);
  }
  png_write_end(png, info);
  return true;
}

// By the number that stands in the file.
constexpr const char* kColorNames[] = {
    "grayscale", "", "colour", "palette colour", "grayscale with alpha", "", "colour with alpha"};

Bytes encode(const Picture& picture) {
  // Compression can add a little to a picture that it does not shrink; the bound is generous.
  Bytes file(picture.stride * picture.height + picture.stride * picture.height / 8 + picture.height +
             4096);
  Sink sink{file.data(), file.size(), 0};
  Writer writer;
  if (!write_picture(writer.png, writer.info, &sink, &picture)) {
    fail("cannot be written as PNG: ", writer.message.text);
  }
  if (sink.size > file.size()) fail("cannot be written as PNG: it does not compress");
  file.resize(sink.size);
  return file;
}

}  // namespace

Image decode_png(ByteView file, const Size&) {
  if (file.size() < 8 || png_sig_cmp(file.data(), 0, 8) != 0) fail("is no PNG file");
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

Bytes encode_png(const ImageView& image) {
  return encode({image.width, image.height, 16, PNG_COLOR_TYPE_GRAY,
                 reinterpret_cast<const unsigned char*>(image.pixels.data()),
                 std::size_t{2} * image.width});
}

Bytes encode_png(const ColorImage& image) {
  return encode({image.width, image.height, 8, PNG_COLOR_TYPE_RGB,
                 reinterpret_cast<const unsigned char*>(image.pixels.data()),
                 std::size_t{3} * image.width});
}

}  // namespace kit
