// PNG: the pixels' stream through libdeflate in one piece, which is several times as fast as a row at a time.
#include "kit/image/png.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <libdeflate.h>
#include <memory>
#include <optional>

#include "kit/common/error.h"
#include "kit/image/png_restore.h"
#include "kit/image/png_rows.h"

namespace kit {

namespace {

constexpr unsigned char kSignature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr std::size_t kHeaderBytes = 13;
constexpr std::size_t kChunkBytes = 12;         // of a chunk beside its contents: length, type, checksum
constexpr std::uint32_t kMostSide = 1'000'000;  // of a picture that libpng takes
constexpr std::size_t kMostPerByte = 1032;      // what a compressed byte can stand for

std::uint32_t get_u32(const unsigned char* from) {
  return std::uint32_t{from[0]} << 24 | std::uint32_t{from[1]} << 16 | std::uint32_t{from[2]} << 8 |
         std::uint32_t{from[3]};
}

void put_u32(std::size_t value, unsigned char* to) {
  for (int i = 0; i < 4; ++i) to[i] = static_cast<unsigned char>(value >> (24 - 8 * i));
}

std::uint16_t big_endian(std::uint16_t pixel) {
  if (std::endian::native == std::endian::big) return pixel;
  return static_cast<std::uint16_t>(pixel << 8 | pixel >> 8);
}

struct Free {
  void operator()(libdeflate_compressor* compressor) const { libdeflate_free_compressor(compressor); }
  void operator()(libdeflate_decompressor* decompressor) const {
    libdeflate_free_decompressor(decompressor);
  }
};

/// The thread's own, whose tables are as large as a small picture.
libdeflate_compressor* compressor(Compression compression) {
  constexpr int levels[] = {1, 9};
  thread_local std::unique_ptr<libdeflate_compressor, Free> all[std::size(levels)];
  const auto at = static_cast<std::size_t>(compression);
  if (!all[at]) all[at].reset(libdeflate_alloc_compressor(levels[at]));
  if (!all[at]) throw std::bad_alloc();
  return all[at].get();
}

libdeflate_decompressor* decompressor() {
  thread_local const std::unique_ptr<libdeflate_decompressor, Free> own(libdeflate_alloc_decompressor());
  if (!own) throw std::bad_alloc();
  return own.get();
}

/// The bytes of a picture as they stand in a file but for compression.
struct Picture {
  std::uint32_t width;
  std::uint32_t height;
  unsigned char depth;
  unsigned char color;
  std::size_t pixel_bytes;
  Bytes bytes;

  std::size_t row_bytes() const { return width * pixel_bytes; }
};

/// Each row after the number of its filter: of `filters`, the one whose differences vary least.
Bytes filter(const Picture& picture, std::initializer_list<RowFilter> filters) {
  const std::size_t row_bytes = picture.row_bytes();
  Bytes filtered((1 + row_bytes) * picture.height), tried(row_bytes);
  const Bytes first_above(row_bytes);
  RowBytes above = first_above;
  for (std::size_t y = 0; y < picture.height; ++y) {
    const RowBytes row(picture.bytes.data() + y * row_bytes, row_bytes);
    unsigned char* to = filtered.data() + y * (1 + row_bytes);
    std::size_t least = SIZE_MAX;
    for (const RowFilter each : filters) {
      filter_row(each, row, above, picture.pixel_bytes, tried.data());
      const std::size_t found = filters.size() > 1 ? variation(tried) : 0;
      if (found >= least) continue;
      least = found;
      to[0] = static_cast<unsigned char>(each);
      std::memcpy(to + 1, tried.data(), row_bytes);
    }
    above = row;
  }
  return filtered;
}

class FileWriter {
 public:
  /// @param most bytes of all chunks' contents
  FileWriter(std::size_t chunks, std::size_t most)
      : file_(sizeof kSignature + chunks * kChunkBytes + most) {
    std::copy(std::begin(kSignature), std::end(kSignature), file_.begin());
  }
  /// Where the next chunk's contents go.
  unsigned char* contents() { return file_.data() + size_ + 8; }
  void end_chunk(const char* type, std::size_t length) {
    unsigned char* const chunk = file_.data() + size_;
    put_u32(length, chunk);
    std::memcpy(chunk + 4, type, 4);
    put_u32(libdeflate_crc32(0, chunk + 4, 4 + length), chunk + 8 + length);
    size_ += kChunkBytes + length;
  }
  Bytes finish() && {
    file_.resize(size_);
    return std::move(file_);
  }

 private:
  Bytes file_;
  std::size_t size_ = sizeof kSignature;
};

Bytes compress(const Picture& picture, std::initializer_list<RowFilter> filters,
               Compression compression) {
  const Bytes pixels = filter(picture, filters);
  libdeflate_compressor* const with = compressor(compression);
  const std::size_t most = libdeflate_zlib_compress_bound(with, pixels.size());
  FileWriter writer(3, kHeaderBytes + most);
  unsigned char* const header = writer.contents();
  put_u32(picture.width, header);
  put_u32(picture.height, header + 4);
  const unsigned char kind[] = {picture.depth, picture.color, 0, 0, 0};
  std::copy(std::begin(kind), std::end(kind), header + 8);
  writer.end_chunk("IHDR", kHeaderBytes);
  const std::size_t size =
      libdeflate_zlib_compress(with, pixels.data(), pixels.size(), writer.contents(), most);
  if (size == 0 || size > INT32_MAX) fail("cannot be written as PNG: it does not compress");
  writer.end_chunk("IDAT", size);
  writer.end_chunk("IEND", 0);
  return std::move(writer).finish();
}

Bytes encode(const Picture& picture, Compression compression) {
  if (compression == Compression::fast) {
    return compress(picture, {RowFilter::sub, RowFilter::up}, compression);
  }
  // One filter for all rows lets the compressor see how they repeat; which, only it can tell.
  Bytes sub = compress(picture, {RowFilter::sub}, compression);
  Bytes up = compress(picture, {RowFilter::up}, compression);
  return sub.size() < up.size() ? sub : up;
}

bool is_type(const unsigned char* chunk, const char* type) {
  return std::memcmp(chunk + 4, type, 4) == 0;
}

/// What a plain file holds: a 16-bit grayscale picture in one pass, every chunk whole.
struct PlainFile {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  Bytes joined;         // the pixels' stream, where it stands in several chunks
  ByteView compressed;  // the stream
};

/// @return false: the file is no such one
bool read_chunks(ByteView file, PlainFile& plain) {
  bool header = false, closed = false;  // the stream's chunks stand one after the other
  for (ByteView rest = file.subspan(sizeof kSignature); rest.size() >= kChunkBytes;) {
    const unsigned char* const chunk = rest.data();
    const std::size_t length = get_u32(chunk);
    if (length > rest.size() - kChunkBytes) return false;
    const auto is_letter = [](unsigned char c) { return (c | 0x20) >= 'a' && (c | 0x20) <= 'z'; };
    if (!std::all_of(chunk + 4, chunk + 8, is_letter)) return false;
    const bool needed = (chunk[4] & 0x20) == 0;
    if (needed && libdeflate_crc32(0, chunk + 4, 4 + length) != get_u32(chunk + 8 + length)) return false;
    const ByteView contents = rest.subspan(8, length);
    if (!header) {
      constexpr unsigned char kind[] = {16, 0, 0, 0, 0};
      if (!is_type(chunk, "IHDR") || length != kHeaderBytes ||
          std::memcmp(&contents[8], kind, sizeof kind) != 0)
        return false;
      plain.width = get_u32(contents.data());
      plain.height = get_u32(&contents[4]);
      header = true;
    } else if (is_type(chunk, "IDAT")) {
      if (closed) return false;
      if (plain.compressed.empty()) {
        plain.compressed = contents;
      } else {
        if (plain.joined.empty()) {
          plain.joined.reserve(file.size());
          plain.joined.assign(plain.compressed.begin(), plain.compressed.end());
        }
        plain.joined.insert(plain.joined.end(), contents.begin(), contents.end());
      }
    } else if (is_type(chunk, "IEND")) {
      if (!plain.joined.empty()) plain.compressed = plain.joined;
      return length == 0 && !plain.compressed.empty();
    } else if (needed) {
      return false;
    } else {
      closed = !plain.compressed.empty();
    }
    rest = rest.subspan(kChunkBytes + length);
  }
  return false;
}

/// Most files, and none that is damaged or unusual.
std::optional<Image> decode_plain(ByteView file) {
  PlainFile plain;
  if (!read_chunks(file, plain)) return std::nullopt;
  const std::uint32_t width = plain.width, height = plain.height;
  if (width == 0 || height == 0 || width > kMostSide || height > kMostSide) return std::nullopt;
  const std::size_t row_bytes = std::size_t{2} * width, pixel_bytes = row_bytes * height;
  if (pixel_bytes > 2 * kMostPixels || pixel_bytes / kMostPerByte > file.size()) return std::nullopt;

  Bytes rows((1 + row_bytes) * height);
  const ByteView stream = plain.compressed;
  if (libdeflate_zlib_decompress(decompressor(), stream.data(), stream.size(), rows.data(), rows.size(),
                                 nullptr) != LIBDEFLATE_SUCCESS) {
    return std::nullopt;
  }
  Image image = make_image(width, height);
  if (!restore_rows(rows, image)) return std::nullopt;
  return image;
}

}  // namespace

Image decode_png(ByteView file, const Size&) {
  if (file.size() < sizeof kSignature || std::memcmp(file.data(), kSignature, sizeof kSignature) != 0)
    fail("is no PNG file");
  if (std::optional<Image> image = decode_plain(file)) return *std::move(image);
  return decode_any_png(file);
}

Bytes encode_png(const ImageView& image, Compression compression) {
  Picture picture{image.width, image.height, 16, 0, 2, Bytes(2 * image.pixels.size())};
  unsigned char* to = picture.bytes.data();
  for (const std::uint16_t pixel : image.pixels) {
    const std::uint16_t stored = big_endian(pixel);
    std::memcpy(to, &stored, sizeof stored);
    to += sizeof stored;
  }
  return encode(picture, compression);
}

Bytes encode_png(const ImageView& image) { return encode_png(image, Compression::fast); }

Bytes encode_png(const ColorImage& image) {
  Picture picture{image.width, image.height, 8, 2, 3, Bytes(3 * image.pixels.size())};
  std::memcpy(picture.bytes.data(), image.pixels.data(), picture.bytes.size());
  return encode(picture, Compression::fast);
}

}  // namespace kit
