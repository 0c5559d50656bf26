// NumPy array files: a magic text, a version, the length of a header, the header (a Python dictionary)
// and the array's bytes.
#include <cctype>

#include "kit/common/error.h"
#include "kit/image/codec.h"

namespace kit {

namespace {

constexpr std::string_view kMagic = "\x93NUMPY";

struct Header {
  std::string type;
  bool column_order = false;
  std::vector<std::uint64_t> shape;
};

class HeaderReader {
 public:
  explicit HeaderReader(std::string_view text) : rest_(text) {}

  Header read() {
    Header header;
    bool type = false, order = false, shape = false;
    expect('{');
    while (!accept('}')) {
      const std::string key = quoted();
      expect(':');
      if (key == "descr") {
        header.type = quoted();
        type = true;
      } else if (key == "fortran_order") {
        header.column_order = truth();
        order = true;
      } else if (key == "shape") {
        header.shape = tuple();
        shape = true;
      } else {
        malformed();
      }
      if (!accept(',')) {
        expect('}');
        break;
      }
    }
    skip_blanks();
    if (!type || !order || !shape || !rest_.empty()) malformed();
    return header;
  }

 private:
  [[noreturn]] static void malformed() {
    fail("has a malformed header; expected {'descr': '<u2', 'fortran_order': False, 'shape': (h, w)}");
  }
  void skip_blanks() {
    while (!rest_.empty() && std::isspace(static_cast<unsigned char>(rest_[0]))) rest_.remove_prefix(1);
  }
  bool accept(char c) {
    skip_blanks();
    if (!rest_.starts_with(c)) return false;
    rest_.remove_prefix(1);
    return true;
  }
  void expect(char c) {
    if (!accept(c)) malformed();
  }
  std::string quoted() {
    const char quote = accept('\'') ? '\'' : '"';
    if (quote == '"') {
      // A list of fields, that is, a structured type, is not quoted.
      if (rest_.starts_with('[')) fail("has a structured type; expected '<u2' or '>u2'");
      expect('"');
    }
    const auto end = rest_.find(quote);
    if (end == std::string_view::npos) malformed();
    std::string text(rest_.substr(0, end));
    rest_.remove_prefix(end + 1);
    return text;
  }
  bool truth() {
    skip_blanks();
    for (const bool value : {false, true}) {
      const std::string_view word = value ? "True" : "False";
      if (!rest_.starts_with(word)) continue;
      rest_.remove_prefix(word.size());
      return value;
    }
    malformed();
  }
  std::vector<std::uint64_t> tuple() {
    std::vector<std::uint64_t> values;
    expect('(');
    while (!accept(')')) {
      values.push_back(integer());
      if (!accept(',')) {
        expect(')');
        break;
      }
    }
    return values;
  }
  std::uint64_t integer() {
    skip_blanks();
    const auto end = rest_.find_first_not_of("0123456789");
    const auto value = parse_integer(rest_.substr(0, end));
    if (!value) malformed();
    rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end);
    return static_cast<std::uint64_t>(*value);
  }

  std::string_view rest_;
};

std::string shape_text(const std::vector<std::uint64_t>& shape) {
  std::vector<std::string> sizes;
  for (const std::uint64_t size : shape) sizes.push_back(std::to_string(size));
  return concat("(", join(sizes, ", "), ")");
}

/// Takes the header off the front of the file.
std::string_view take_header(ByteView& file) {
  const std::string_view text(reinterpret_cast<const char*>(file.data()), file.size());
  if (!text.starts_with(kMagic)) fail("is no NumPy array file");
  constexpr std::size_t version_end = kMagic.size() + 2;
  if (file.size() < version_end) fail("ends inside its header");
  const unsigned version = file[kMagic.size()];
  if (version < 1 || version > 3) fail("has the format version ", version, "; expected 1 to 3");
  const std::size_t length_bytes = version == 1 ? 2 : 4;
  std::size_t length = 0;
  for (std::size_t i = length_bytes; i-- > 0;) {
    if (version_end + i >= file.size()) fail("ends inside its header");
    length = length << 8 | file[version_end + i];
  }
  const std::size_t start = version_end + length_bytes;
  if (length > file.size() - start) fail("ends inside its header");
  file = file.subspan(start + length);
  return text.substr(start, length);
}

}  // namespace

Image decode_npy(ByteView file, const Size&) {
  const Header header = HeaderReader(take_header(file)).read();
  if (header.type != "<u2" && header.type != ">u2") {
    fail("has elements of type '", header.type, "'; expected 16-bit unsigned, '<u2' or '>u2'");
  }
  if (header.column_order) fail("is in column order; expected C order (fortran_order False)");
  if (header.shape.size() != 2) {
    fail("has the shape ", shape_text(header.shape), "; expected (height, width)");
  }
  return read_samples(file, header.type == "<u2" ? ByteOrder::little : ByteOrder::big, header.shape[1],
                      header.shape[0]);
}

Bytes encode_npy(const ImageView& image) {
  std::string header = concat("{'descr': '<u2', 'fortran_order': False, 'shape': (", image.height, ", ",
                              image.width, "), }");
  // The array begins at a multiple of 64 bytes, and a line feed ends the header.
  const std::size_t front = kMagic.size() + 4;
  header.resize((front + header.size() + 1 + 63) / 64 * 64 - front - 1, ' ');
  header += '\n';
  Bytes file(kMagic.begin(), kMagic.end());
  for (const std::size_t byte :
       {std::size_t{1}, std::size_t{0}, header.size() & 0xFF, header.size() >> 8}) {
    file.push_back(static_cast<unsigned char>(byte));
  }
  file.insert(file.end(), header.begin(), header.end());
  append_samples(image, ByteOrder::little, file);
  return file;
}

}  // namespace kit
