// TIFF through libtiff. Its messages come to handlers of our own; what a callback throws waits until the library has returned.
#include "kit/image/tiff.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>
#include <tiffio.h>

#include "kit/common/error.h"
#include "kit/image/codec.h"

namespace kit {

namespace {

constexpr std::size_t kMostPages = 1 << 20;

/// An open TIFF file and what went wrong in it.
class Tiff {
 public:
  Tiff(RandomAccess file, const char* mode) : file_(std::move(file)) {
    const std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options(TIFFOpenOptionsAlloc(),
                                                                                   TIFFOpenOptionsFree);
    if (!options) throw std::bad_alloc();
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), on_message, this);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), on_warning, this);
    // What stands beside the pixels needs little, whatever a damaged file claims.
    const std::uint64_t most = std::clamp<std::uint64_t>(file_.size(), 1 << 11, 1 << 30) << 10;
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), static_cast<tmsize_t>(most));
    // Not mapped, and no list of strips before it is needed.
    handle_ = TIFFClientOpenExt("", concat(mode, "mO").c_str(), this, on_read, on_write, on_seek,
                                on_close, on_size, nullptr, nullptr, options.get());
    if (thrown_) close();
    rethrow();
  }
  Tiff(const Tiff&) = delete;
  Tiff& operator=(const Tiff&) = delete;
  ~Tiff() { close(); }

  explicit operator bool() const { return handle_ != nullptr; }
  TIFF* get() const { return handle_; }
  const char* message() const { return message_[0] != 0 ? message_ : "unknown error"; }
  std::uint64_t size() const { return file_.size(); }
  std::size_t read(std::uint64_t offset, std::span<unsigned char> to) const {
    return file_.read(offset, to);
  }
  void close() {
    if (handle_ != nullptr) TIFFClose(std::exchange(handle_, nullptr));
  }
  /// To be called after the library's functions.
  void rethrow() {
    if (thrown_) std::rethrow_exception(std::exchange(thrown_, nullptr));
  }

  template <typename Value>
  Value field(std::uint32_t tag, Value otherwise) const {
    Value value{};
    return TIFFGetFieldDefaulted(handle_, tag, &value) == 1 ? value : otherwise;
  }

 private:
  static Tiff& self(thandle_t handle) { return *static_cast<Tiff*>(handle); }
  template <typename Work>
  tmsize_t guarded(const Work& work) {
    try {
      return work();
    } catch (...) {
      if (!thrown_) thrown_ = std::current_exception();
      return -1;
    }
  }

  static tmsize_t on_read(thandle_t handle, void* to, tmsize_t size) {
    Tiff& tiff = self(handle);
    return tiff.guarded([&] {
      const std::size_t count = tiff.file_.read(
          tiff.position_, {static_cast<unsigned char*>(to), static_cast<std::size_t>(size)});
      tiff.position_ += count;
      return static_cast<tmsize_t>(count);
    });
  }
  static tmsize_t on_write(thandle_t handle, void* from, tmsize_t size) {
    Tiff& tiff = self(handle);
    if (!tiff.file_.write) return -1;
    return tiff.guarded([&] {
      tiff.file_.write(tiff.position_,
                       {static_cast<const unsigned char*>(from), static_cast<std::size_t>(size)});
      tiff.position_ += static_cast<std::uint64_t>(size);
      return size;
    });
  }
  static toff_t on_seek(thandle_t handle, toff_t offset, int whence) {
    Tiff& tiff = self(handle);
    const std::uint64_t base = whence == SEEK_CUR   ? tiff.position_
                               : whence == SEEK_END ? tiff.file_.size()
                                                    : 0;
    return tiff.position_ = base + offset;
  }
  static toff_t on_size(thandle_t handle) { return self(handle).file_.size(); }
  static int on_close(thandle_t) { return 0; }
  static int on_message(TIFF*, void* user, const char*, const char* format, va_list arguments) {
    char* const text = static_cast<Tiff*>(user)->message_;
    if (text[0] == 0) std::vsnprintf(text, sizeof message_, format, arguments);  // the first is the cause
    return 1;
  }
  static int on_warning(TIFF*, void*, const char*, const char*, va_list) { return 1; }

  RandomAccess file_;
  std::uint64_t position_ = 0;
  char message_[160] = "";
  std::exception_ptr thrown_;
  TIFF* handle_ = nullptr;
};

[[noreturn]] void fail_damaged(Tiff& tiff) {
  tiff.rethrow();
  fail("is damaged or truncated: ", tiff.message());
}

/// The most that a byte of these can stand for.
std::size_t most_per_byte(std::uint16_t compression) {
  switch (compression) {
    case COMPRESSION_NONE:
      return 1;
    case COMPRESSION_PACKBITS:
      return 64;
    case COMPRESSION_DEFLATE:
    case COMPRESSION_ADOBE_DEFLATE:
      return 1032;
    case COMPRESSION_LZW:
      return 1400;
    default:
      fail("is compressed in way ", compression, "; expected none, PackBits, LZW or Deflate");
  }
}

/// @return whether the samples are signed
bool check_samples(const Tiff& tiff) {
  const auto bits = tiff.field<std::uint16_t>(TIFFTAG_BITSPERSAMPLE, 1);
  const auto samples = tiff.field<std::uint16_t>(TIFFTAG_SAMPLESPERPIXEL, 1);
  const auto type = tiff.field<std::uint16_t>(TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
  const auto color = tiff.field<std::uint16_t>(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
  const bool whole = type == SAMPLEFORMAT_UINT || type == SAMPLEFORMAT_INT;
  if (bits != 16 || samples != 1 || !whole) {
    fail("has ", samples, samples == 1 ? " sample of " : " samples of ", bits,
         type == SAMPLEFORMAT_IEEEFP ? " bits in floating point" : " bits",
         " a pixel; expected a 16-bit grayscale TIFF file");
  }
  if (color != PHOTOMETRIC_MINISBLACK) fail("is no grayscale from black up (photometric ", color, ")");
  const auto orientation = tiff.field<std::uint16_t>(TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
  if (orientation != ORIENTATION_TOPLEFT)
    fail("has the orientation ", orientation, "; expected 1, rows from the top");
  return type == SAMPLEFORMAT_INT;
}

/// The library takes a page whose link to the next one is missing for the last.
void expect_whole_directory(const Tiff& tiff, std::uint64_t directory) {
  const bool large = TIFFIsBigTIFF(tiff.get()) != 0, big_endian = TIFFIsBigEndian(tiff.get()) != 0;
  const std::size_t count_bytes = large ? 8 : 2, entry_bytes = large ? 20 : 12,
                    link_bytes = large ? 8 : 4;
  unsigned char count[8] = {};
  const std::size_t got = tiff.read(directory, std::span(count).first(count_bytes));
  std::uint64_t entries = 0;
  for (std::size_t i = 0; i < count_bytes; ++i)
    entries = entries << 8 | count[big_endian ? i : count_bytes - 1 - i];
  const std::uint64_t left = tiff.size() - std::min(tiff.size(), directory + count_bytes);
  if (got < count_bytes || left < link_bytes || entries > (left - link_bytes) / entry_bytes)
    fail("is truncated: it ends inside the directory of a page");
}

void read_strips(Tiff& tiff, Image& image) {
  for (std::uint32_t y = 0; y < image.height; ++y) {
    if (TIFFReadScanline(tiff.get(), image.pixels.data() + std::size_t{y} * image.width, y, 0) != 1)
      fail_damaged(tiff);
  }
}

void read_tiles(Tiff& tiff, Image& image, std::size_t most_bytes) {
  const auto width = tiff.field<std::uint32_t>(TIFFTAG_TILEWIDTH, 0);
  const auto height = tiff.field<std::uint32_t>(TIFFTAG_TILELENGTH, 0);
  const std::size_t bytes = 2 * count_pixels(width, height);
  if (bytes > most_bytes || static_cast<tmsize_t>(bytes) != TIFFTileSize(tiff.get()))
    fail("is truncated: ", tiff.size(), " bytes cannot hold a tile of ", width, "x", height, " pixels");
  std::vector<std::uint16_t> tile(bytes / 2);
  for (std::uint32_t top = 0; top < image.height; top += height) {
    for (std::uint32_t left = 0; left < image.width; left += width) {
      const tmsize_t got = TIFFReadEncodedTile(tiff.get(), TIFFComputeTile(tiff.get(), left, top, 0, 0),
                                               tile.data(), static_cast<tmsize_t>(bytes));
      if (got != static_cast<tmsize_t>(bytes)) fail_damaged(tiff);
      const std::uint32_t columns = std::min(width, image.width - left);
      const std::uint32_t rows = std::min(height, image.height - top);
      for (std::uint32_t y = 0; y < rows; ++y) {
        std::copy_n(tile.begin() + static_cast<std::ptrdiff_t>(std::size_t{y} * width), columns,
                    image.pixels.begin() +
                        static_cast<std::ptrdiff_t>((std::size_t{top} + y) * image.width + left));
      }
    }
  }
}

Image read_current_page(Tiff& tiff) {
  const bool is_signed = check_samples(tiff);
  const auto width = tiff.field<std::uint32_t>(TIFFTAG_IMAGEWIDTH, 0);
  const auto height = tiff.field<std::uint32_t>(TIFFTAG_IMAGELENGTH, 0);
  const std::size_t bytes = 2 * count_pixels(width, height);
  const auto compression = tiff.field<std::uint16_t>(TIFFTAG_COMPRESSION, COMPRESSION_NONE);
  const std::size_t most_bytes = tiff.size() * most_per_byte(compression);
  if (bytes > most_bytes)
    fail("is truncated: ", tiff.size(), " bytes cannot hold ", width, "x", height, " pixels");
  Image image = make_image(width, height);
  if (TIFFIsTiled(tiff.get()) != 0) {
    read_tiles(tiff, image, 4 * most_bytes);
  } else {
    if (TIFFScanlineSize(tiff.get()) != static_cast<tmsize_t>(2) * width) fail_damaged(tiff);
    read_strips(tiff, image);
  }
  tiff.rethrow();
  const auto negative = std::find_if(image.pixels.begin(), image.pixels.end(),
                                     [](std::uint16_t pixel) { return pixel > 32767; });
  if (is_signed && negative != image.pixels.end())
    fail("has the negative value ", static_cast<std::int16_t>(*negative), "; expected 0 to 32767");
  return image;
}

RandomAccess growing(Bytes& file) {
  RandomAccess access = view_of({});
  access.read = [&file](std::uint64_t offset, std::span<unsigned char> to) {
    return view_of(file).read(offset, to);
  };
  access.write = [&file](std::uint64_t offset, ByteView bytes) {
    file.resize(std::max<std::size_t>(file.size(), offset + bytes.size()));
    std::copy(bytes.begin(), bytes.end(), file.begin() + static_cast<std::ptrdiff_t>(offset));
  };
  access.size = [&file] { return std::uint64_t{file.size()}; };
  return access;
}

}  // namespace

RandomAccess view_of(ByteView file) {
  return {[file](std::uint64_t offset, std::span<unsigned char> to) {
            const std::size_t start = std::min<std::uint64_t>(offset, file.size());
            const std::size_t count = std::min(to.size(), file.size() - start);
            std::copy_n(file.begin() + static_cast<std::ptrdiff_t>(start), count, to.begin());
            return count;
          },
          nullptr, [file] { return std::uint64_t{file.size()}; }};
}

struct TiffReader::State : Tiff {
  using Tiff::Tiff;
};

TiffReader::TiffReader(RandomAccess file) : state_(std::make_unique<State>(std::move(file), "r")) {
  if (!*state_) fail("is no TIFF file or is damaged: ", state_->message());
}
TiffReader::~TiffReader() = default;

std::vector<std::uint64_t> TiffReader::pages() {
  std::vector<std::uint64_t> offsets;
  Tiff& tiff = *state_;
  for (;;) {
    if (offsets.size() == kMostPages) fail("has more than ", kMostPages, " pages");
    offsets.push_back(TIFFCurrentDirOffset(tiff.get()));
    check_samples(tiff);
    if (TIFFLastDirectory(tiff.get()) != 0) break;
    if (TIFFReadDirectory(tiff.get()) != 1) fail_damaged(tiff);
  }
  tiff.rethrow();
  expect_whole_directory(tiff, offsets.back());
  return offsets;
}

Image TiffReader::read_page(std::uint64_t page) {
  if (TIFFSetSubDirectory(state_->get(), page) != 1) fail_damaged(*state_);
  return read_current_page(*state_);
}

Image TiffReader::read_first_page() { return read_current_page(*state_); }

struct TiffWriter::State : Tiff {
  using Tiff::Tiff;
};

TiffWriter::TiffWriter(RandomAccess file, bool large)
    : state_(std::make_unique<State>(std::move(file), large ? "w8" : "w")) {
  if (!*state_) fail("cannot be written as TIFF: ", state_->message());
}
TiffWriter::~TiffWriter() = default;

void TiffWriter::write_page(const ImageView& image) {
  Tiff& tiff = *state_;
  const auto set = [&](std::uint32_t tag, auto value) { TIFFSetField(tiff.get(), tag, value); };
  set(TIFFTAG_IMAGEWIDTH, image.width);
  set(TIFFTAG_IMAGELENGTH, image.height);
  set(TIFFTAG_BITSPERSAMPLE, 16);
  set(TIFFTAG_SAMPLESPERPIXEL, 1);
  set(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
  set(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  set(TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE);
  set(TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
  set(TIFFTAG_ZIPQUALITY, 1);
  set(TIFFTAG_ROWSPERSTRIP, std::max(1u, (1u << 16) / (2 * image.width)));
  std::vector<std::uint16_t> row(image.width);  // the library changes what it is given
  for (std::uint32_t y = 0; y < image.height; ++y) {
    std::copy_n(image.pixels.begin() + static_cast<std::ptrdiff_t>(std::size_t{y} * image.width),
                image.width, row.begin());
    if (TIFFWriteScanline(tiff.get(), row.data(), y, 0) == 1) continue;
    tiff.rethrow();
    fail("cannot be written as TIFF: ", tiff.message());
  }
  const bool written = TIFFWriteDirectory(tiff.get()) == 1;
  tiff.rethrow();
  if (!written) fail("cannot be written as TIFF: ", tiff.message());
}

void TiffWriter::finish() {
  state_->close();
  state_->rethrow();
}

Image decode_tiff(ByteView file, const Size&) {
  TiffReader reader(view_of(file));
  const std::size_t pages = reader.pages().size();
  if (pages != 1) fail("has ", pages, " pages; expected one image");
  return TiffReader(view_of(file)).read_first_page();
}

Bytes encode_tiff(const ImageView& image) {
  Bytes file;
  TiffWriter writer(growing(file), false);
  writer.write_page(image);
  writer.finish();
  return file;
}

}  // namespace kit
