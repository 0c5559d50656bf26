// Binary portable graymaps with two bytes a sample, the higher one first.
#include <cctype>

#include "kit/common/error.h"
#include "kit/image/codec.h"

namespace kit {

namespace {

class HeaderReader {
 public:
  explicit HeaderReader(ByteStream& file) : file_(file) {
    const auto first = file.next(), second = file.next();
    if (first != 'P' || second != '5') fail("is no binary PGM file; expected it to begin with P5");
    next_ = file.next();
  }

  /// A number and the byte that ends it.
  std::uint32_t number(const char* what) {
    skip_blanks_and_comments();
    std::uint32_t value = 0;
    if (!next_ || !std::isdigit(*next_)) fail("has no ", what, " in its header");
    for (; next_ && std::isdigit(*next_); next_ = file_.next()) {
      value = value * 10 + static_cast<std::uint32_t>(*next_ - '0');
      if (value > 1u << 28) fail("has an impossible ", what, " in its header");
    }
    return value;
  }

  /// The one blank that ends the header has been read.
  void expect_end() const {
    if (!next_ || !std::isspace(*next_)) fail("ends inside its header");
  }

 private:
  void skip_blanks_and_comments() {
    bool comment = false;
    for (; next_ && (comment || *next_ == '#' || std::isspace(*next_)); next_ = file_.next()) {
      comment = (comment || *next_ == '#') && *next_ != '\n' && *next_ != '\r';
    }
  }

  ByteStream& file_;
  std::optional<unsigned char> next_;
};

SampleLayout read_header(ByteStream& file, const ReadOptions&) {
  HeaderReader header(file);
  SampleLayout layout;
  layout.width = header.number("width");
  layout.height = header.number("height");
  const std::uint32_t most = header.number("maximum value");
  header.expect_end();
  if (most < 256) fail("is 8-bit (maximum value ", most, "); expected a 16-bit PGM file");
  if (most > 65535) fail("has the maximum value ", most, "; expected at most 65535");
  layout.order = ByteOrder::big;
  layout.most = static_cast<std::uint16_t>(most);
  return layout;
}

Bytes write_header(const SampleLayout& layout) {
  const std::string header = concat("P5\n", layout.width, " ", layout.height, "\n65535\n");
  return Bytes(header.begin(), header.end());
}

}  // namespace

extern const SampleHeader kPgmHeader = {read_header, write_header, ByteOrder::big, false};

}  // namespace kit
