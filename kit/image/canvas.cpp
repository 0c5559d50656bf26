#include "kit/image/canvas.h"

#include <algorithm>

namespace kit {

namespace {

constexpr std::uint32_t kGlyphWidth = 5, kAdvance = kGlyphWidth + 1;

struct Glyph {
  char character;
  std::uint8_t rows[kTextHeight];  // five bits each, the highest on the left
};

constexpr Glyph kGlyphs[] = {
    {'0', {0b01110, 0b10001, 0b10011, 0b10101, 0b11001, 0b10001, 0b01110}},
    {'1', {0b00100, 0b01100, 0b00100, 0b00100, 0b00100, 0b00100, 0b01110}},
    {'2', {0b01110, 0b10001, 0b00001, 0b00110, 0b01000, 0b10000, 0b11111}},
    {'3', {0b01110, 0b10001, 0b00001, 0b00110, 0b00001, 0b10001, 0b01110}},
    {'4', {0b00010, 0b00110, 0b01010, 0b10010, 0b11111, 0b00010, 0b00010}},
    {'5', {0b11111, 0b10000, 0b11110, 0b00001, 0b00001, 0b10001, 0b01110}},
    {'6', {0b00110, 0b01000, 0b10000, 0b11110, 0b10001, 0b10001, 0b01110}},
    {'7', {0b11111, 0b00001, 0b00010, 0b00100, 0b01000, 0b01000, 0b01000}},
    {'8', {0b01110, 0b10001, 0b10001, 0b01110, 0b10001, 0b10001, 0b01110}},
    {'9', {0b01110, 0b10001, 0b10001, 0b01111, 0b00001, 0b00010, 0b01100}},
    {'-', {0b00000, 0b00000, 0b00000, 0b11111, 0b00000, 0b00000, 0b00000}},
    {'+', {0b00000, 0b00100, 0b00100, 0b11111, 0b00100, 0b00100, 0b00000}},
    {'.', {0b00000, 0b00000, 0b00000, 0b00000, 0b00000, 0b01100, 0b01100}},
    {'a', {0b00000, 0b00000, 0b01110, 0b00001, 0b01111, 0b10001, 0b01111}},
    {'b', {0b10000, 0b10000, 0b11110, 0b10001, 0b10001, 0b10001, 0b11110}},
    {'c', {0b00000, 0b00000, 0b01111, 0b10000, 0b10000, 0b10000, 0b01111}},
    {'d', {0b00001, 0b00001, 0b01111, 0b10001, 0b10001, 0b10001, 0b01111}},
    {'e', {0b00000, 0b00000, 0b01110, 0b10001, 0b11111, 0b10000, 0b01110}},
    {'f', {0b00110, 0b01000, 0b11110, 0b01000, 0b01000, 0b01000, 0b01000}},
    {'g', {0b00000, 0b01111, 0b10001, 0b10001, 0b01111, 0b00001, 0b01110}},
    {'h', {0b10000, 0b10000, 0b11110, 0b10001, 0b10001, 0b10001, 0b10001}},
    {'i', {0b00100, 0b00000, 0b01100, 0b00100, 0b00100, 0b00100, 0b01110}},
    {'l', {0b01100, 0b00100, 0b00100, 0b00100, 0b00100, 0b00100, 0b01110}},
    {'m', {0b00000, 0b00000, 0b11010, 0b10101, 0b10101, 0b10101, 0b10101}},
    {'n', {0b00000, 0b00000, 0b11110, 0b10001, 0b10001, 0b10001, 0b10001}},
    {'o', {0b00000, 0b00000, 0b01110, 0b10001, 0b10001, 0b10001, 0b01110}},
    {'r', {0b00000, 0b00000, 0b10110, 0b11000, 0b10000, 0b10000, 0b10000}},
    {'t', {0b01000, 0b01000, 0b11110, 0b01000, 0b01000, 0b01000, 0b00110}},
    {'v', {0b00000, 0b00000, 0b10001, 0b10001, 0b10001, 0b01010, 0b00100}},
};

}  // namespace

std::uint32_t text_width(std::string_view text) {
  return text.empty() ? 0 : static_cast<std::uint32_t>(text.size()) * kAdvance - 1;
}

Canvas::Canvas(Size size, Rgb background)
    : picture_{size.width, size.height,
               std::vector<Rgb>(std::size_t{size.width} * size.height, background)} {}

void Canvas::paint(const ColorImage& image, std::uint32_t left, std::uint32_t top) {
  const std::uint32_t width = left < picture_.width ? std::min(image.width, picture_.width - left) : 0;
  for (std::uint32_t y = 0; y < image.height && top + y < picture_.height; ++y) {
    const auto from = image.pixels.begin() + static_cast<std::ptrdiff_t>(std::size_t{y} * image.width);
    std::copy_n(from, width,
                picture_.pixels.begin() +
                    static_cast<std::ptrdiff_t>(std::size_t{top + y} * picture_.width + left));
  }
}

void Canvas::fill(std::uint32_t left, std::uint32_t top, Size size, Rgb color) {
  const std::uint32_t right = std::min(left + size.width, picture_.width);
  const std::uint32_t bottom = std::min(top + size.height, picture_.height);
  for (std::uint32_t y = top; y < bottom; ++y) {
    for (std::uint32_t x = left; x < right; ++x)
      picture_.pixels[std::size_t{y} * picture_.width + x] = color;
  }
}

void Canvas::write(std::string_view text, std::uint32_t left, std::uint32_t top, Rgb color,
                   std::uint32_t scale) {
  for (const char character : text) {
    const auto* const glyph = std::find_if(std::begin(kGlyphs), std::end(kGlyphs),
                                           [&](const Glyph& g) { return g.character == character; });
    for (std::uint32_t y = 0; glyph != std::end(kGlyphs) && y < kTextHeight; ++y) {
      for (std::uint32_t x = 0; x < kGlyphWidth; ++x) {
        if ((glyph->rows[y] >> (kGlyphWidth - 1 - x) & 1) != 0)
          fill(left + x * scale, top + y * scale, {scale, scale}, color);
      }
    }
    left += kAdvance * scale;
  }
}

}  // namespace kit
