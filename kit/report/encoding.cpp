#include "kit/report/encoding.h"

#include <libdeflate.h>
#include <memory>
#include <new>

#include "kit/common/error.h"

namespace kit {

namespace {

using Octets = std::vector<unsigned char>;

void append_number(Octets& bytes, std::uint32_t number) {
  for (int shift = 24; shift >= 0; shift -= 8)
    bytes.push_back(static_cast<unsigned char>(number >> shift));
}

void append_chunk(Octets& file, const char* type, const Octets& data) {
  append_number(file, static_cast<std::uint32_t>(data.size()));
  const std::size_t start = file.size();
  file.insert(file.end(), type, type + 4);
  file.insert(file.end(), data.begin(), data.end());
  append_number(file, libdeflate_crc32(0, file.data() + start, file.size() - start));
}

Octets compressed(const Octets& bytes) {
  constexpr int kLevel = 6;
  const auto free = [](libdeflate_compressor* with) { libdeflate_free_compressor(with); };
  const std::unique_ptr<libdeflate_compressor, decltype(free)> with(libdeflate_alloc_compressor(kLevel));
  if (!with) throw std::bad_alloc();
  Octets result(libdeflate_zlib_compress_bound(with.get(), bytes.size()));
  result.resize(
      libdeflate_zlib_compress(with.get(), bytes.data(), bytes.size(), result.data(), result.size()));
  if (result.empty()) fail("the report cannot be compressed");
  return result;
}

}  // namespace

std::string base64(std::span<const unsigned char> bytes) {
  constexpr const char* digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
    std::uint32_t group = 0;
    for (std::size_t k = 0; k < 3; ++k) group = group << 8 | (k < count ? bytes[i + k] : 0U);
    for (std::size_t k = 0; k < 4; ++k) text += k <= count ? digits[group >> (18 - 6 * k) & 63] : '=';
  }
  return text;
}

std::vector<unsigned char> png_of(const IndexedPicture& picture) {
  constexpr unsigned char kBits = 8, kPalette = 3;
  Octets file = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'}, header, colors, rows;
  append_number(header, picture.width);
  append_number(header, picture.height);
  header.insert(header.end(), {kBits, kPalette, 0, 0, 0});
  append_chunk(file, "IHDR", header);
  for (const Rgb& color : picture.palette) colors.insert(colors.end(), color.begin(), color.end());
  append_chunk(file, "PLTE", colors);
  for (std::size_t y = 0; y < picture.height; ++y) {
    rows.push_back(
        0);  // not filtered: neighbouring numbers of colours are not alike enough to gain by it
    const auto row = picture.indexes.begin() + static_cast<std::ptrdiff_t>(y * picture.width);
    rows.insert(rows.end(), row, row + picture.width);
  }
  append_chunk(file, "IDAT", compressed(rows));
  append_chunk(file, "IEND", {});
  return file;
}

std::string png_uri(const IndexedPicture& picture) {
  return "data:image/png;base64," + base64(png_of(picture));
}

std::string pack_samples(std::span<const std::uint16_t> samples, std::span<const std::uint16_t> base) {
  const std::size_t count = samples.size();
  const bool has_base = base.size() == count;
  Octets planes(2 * count);
  std::uint16_t last = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const auto rest = static_cast<std::uint16_t>(samples[i] - (has_base ? base[i] : last));
    planes[i] = static_cast<unsigned char>(rest >> 8);
    planes[count + i] = static_cast<unsigned char>(rest & 0xFF);
    last = samples[i];
  }
  return base64(compressed(planes));
}

}  // namespace kit
