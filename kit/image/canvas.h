#ifndef KIT_IMAGE_CANVAS_H
#define KIT_IMAGE_CANVAS_H

#include <string_view>
#include <utility>

#include "kit/image/image.h"

namespace kit {

/// Pixels of a text's height and width, at a scale of 1.
inline constexpr std::uint32_t kTextHeight = 7;
std::uint32_t text_width(std::string_view text);

/// A picture to paint on. What lies outside it is left out.
class Canvas {
 public:
  Canvas(Size size, Rgb background);

  void paint(const ColorImage& image, std::uint32_t left, std::uint32_t top);
  void fill(std::uint32_t left, std::uint32_t top, Size size, Rgb color);
  /// Digits, signs and the letters that legends need; others are blanks.
  void write(std::string_view text, std::uint32_t left, std::uint32_t top, Rgb color,
             std::uint32_t scale);

  ColorImage take() { return std::move(picture_); }

 private:
  ColorImage picture_;
};

}  // namespace kit

#endif
