// Binary portable graymaps with two bytes a sample, the higher one first.
#include <algorithm>
#include <cctype>

#include "kit/common/error.h"
#include "kit/image/codec.h"

namespace kit {

namespace {

class HeaderReader {
 public:
  explicit HeaderReader(ByteView file) : rest_(file) {}

  std::uint32_t number(const char* what) {
    skip_blanks_and_comments();
    std::uint32_t value = 0;
    if (rest_.empty() || !std::isdigit(rest_[0])) fail("has no ", what, " in its header");
    while (!rest_.empty() && std::isdigit(rest_[0])) {
      value = value * 10 + static_cast<std::uint32_t>(rest_[0] - '0');
      if (value > 1u << 28) fail("has an impossible ", what, " in its header");
      rest_ = rest_.subspan(1);
    }
    return value;
  }

  /// What follows the one blank that ends the header.
  ByteView samples() const {
    if (rest_.empty() || !std::isspace(rest_[0])) fail("ends inside its header");
    return rest_.subspan(1);
  }

 private:
  void skip_blanks_and_comments() {
    bool comment = false;
    while (!rest_.empty() && (comment || rest_[0] == '#' || std::isspace(rest_[0]))) {
      comment = (comment || rest_[0] == '#') && rest_[0] != '\n' && rest_[0] != '\r';
      rest_ = rest_.subspan(1);
    }
  }

  ByteView rest_;
};

}  // namespace

Image decode_pgm(ByteView file, const Size&) {
  if (file.size() < 2 || file[0] != 'P' || file[1] != '5') {
    fail("is no binary PGM file; expected it to begin with P5");
  }
  HeaderReader header(file.subspan(2));
  const std::uint32_t width = header.number("width");
  const std::uint32_t height = header.number("height");
  const std::uint32_t most = header.number("maximum value");
  if (most < 256) fail("is 8-bit (maximum value ", most, "); expected a 16-bit PGM file");
  if (most > 65535) fail("has the maximum value ", most, "; expected at most 65535");
  Image image = read_samples(header.samples(), ByteOrder::big, width, height);
  const std::uint16_t largest = *std::max_element(image.pixels.begin(), image.pixels.end());
  if (largest > most) fail("has a pixel of ", largest, " above its maximum value ", most);
  return image;
}

Bytes encode_pgm(const ImageView& image) {
  const std::string header = concat("P5\n", image.width, " ", image.height, "\n65535\n");
  Bytes file(header.begin(), header.end());
  append_samples(image, ByteOrder::big, file);
  return file;
}

}  // namespace kit
