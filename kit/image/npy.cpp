// NumPy array files: a magic text, a version, the length of a header, the header (a Python dictionary)
// and the array's bytes.
#include <algorithm>

#include <nlohmann/json.hpp>

#include "kit/common/error.h"
#include "kit/image/codec.h"

namespace kit {

namespace {

constexpr std::string_view kMagic = "\x93NUMPY";

using Json = nlohmann::json;

[[noreturn]] void fail_malformed() {
  fail("has a malformed header; expected {'descr': '<u2', 'fortran_order': False, 'shape': (h, w)}");
}

/// The dictionary, which is JSON but for its quotes, its words and brackets and its commas at the end.
Json parse_header(std::string_view text) {
  std::string json;
  for (const char c : text) {
    if (c == ')' || c == ']' || c == '}') {
      const auto last = json.find_last_not_of(" \t\r\n");
      if (last != std::string::npos && json[last] == ',') json.resize(last);
    }
    json += c == '\'' ? '"' : c == '(' ? '[' : c == ')' ? ']' : c == 'T' ? 't' : c == 'F' ? 'f' : c;
  }
  Json header = Json::parse(json, nullptr, false);
  if (!header.is_object() || header.size() != 3) fail_malformed();
  for (const char* key : {"descr", "fortran_order", "shape"}) {
    if (!header.contains(key)) fail_malformed();
  }
  return header;
}

/// The header's text.
std::string take_header(ByteStream& file) {
  const auto expect = [&file](std::span<unsigned char> to, const char* otherwise) {
    if (file.read(to) != to.size()) fail(otherwise);
  };
  unsigned char magic[kMagic.size()];
  expect(magic, "is no NumPy array file");
  if (!std::equal(kMagic.begin(), kMagic.end(), magic,
                  [](char a, unsigned char b) { return static_cast<unsigned char>(a) == b; })) {
    fail("is no NumPy array file");
  }
  unsigned char version[2];
  expect(version, "ends inside its header");
  if (version[0] < 1 || version[0] > 3) fail("has the format version ", +version[0], "; expected 1 to 3");
  unsigned char length_bytes[4] = {};
  expect(std::span(length_bytes).first(version[0] == 1 ? 2 : 4), "ends inside its header");
  std::size_t length = 0;
  for (std::size_t i = 4; i-- > 0;) length = length << 8 | length_bytes[i];
  constexpr std::size_t most = 65535;
  if (length > most) fail("has a header of ", length, " bytes; at most ", most, " are read");
  Bytes text(length);
  expect(text, "ends inside its header");
  return {text.begin(), text.end()};
}

struct ElementType {
  std::string_view descr;
  SampleType type;
  ByteOrder order;
};
constexpr ElementType kElementTypes[] = {
    {"<u2", SampleType::u16, ByteOrder::little}, {">u2", SampleType::u16, ByteOrder::big},
    {"<i2", SampleType::i16, ByteOrder::little}, {">i2", SampleType::i16, ByteOrder::big},
    {"<f4", SampleType::f32, ByteOrder::little}, {">f4", SampleType::f32, ByteOrder::big},
    {"<f8", SampleType::f64, ByteOrder::little}, {">f8", SampleType::f64, ByteOrder::big}};

void take_type(const std::string& descr, const ReadOptions& options, SampleLayout& layout) {
  const auto* const known = std::find_if(std::begin(kElementTypes), std::end(kElementTypes),
                                         [&](const ElementType& each) { return each.descr == descr; });
  if (known == std::end(kElementTypes)) {
    fail("has elements of type '", descr, "'; expected 16-bit whole numbers, '<u2' or '>u2'");
  }
  layout.type = known->type;
  layout.order = known->order;
  const bool whole = known->type == SampleType::u16 || known->type == SampleType::i16;
  if (!whole && !options.units_a_metre) {
    fail("has elements of type '", descr,
         "'; expected 16-bit whole numbers, '<u2' or '>u2', or --metres if it holds metres");
  }
  if (whole && options.units_a_metre) {
    fail("has elements of type '", descr, "', which are units already; --metres is for '<f4' and '<f8'");
  }
}

SampleLayout read_header(ByteStream& file, const ReadOptions& options) {
  const Json header = parse_header(take_header(file));
  const Json &type = header["descr"], &order = header["fortran_order"], &shape = header["shape"];
  if (type.is_array()) fail("has a structured type; expected '<u2' or '>u2'");
  if (!type.is_string() || !order.is_boolean() || !shape.is_array()) fail_malformed();
  std::vector<std::string> sizes;
  for (const Json& size : shape) sizes.push_back(size.is_number_unsigned() ? size.dump() : "");
  if (std::find(sizes.begin(), sizes.end(), "") != sizes.end()) fail_malformed();
  SampleLayout layout;
  take_type(type.get<std::string>(), options, layout);
  if (order.get<bool>()) fail("is in column order; expected C order (fortran_order False)");
  if (sizes.size() != 2 && sizes.size() != 3) {
    fail("has the shape (", join(sizes, ", "),
         "); expected (height, width), or (images, height, width) for a stack");
  }
  layout.stack = sizes.size() == 3;
  if (layout.stack) layout.count = shape[0];
  layout.height = shape[sizes.size() - 2];
  layout.width = shape[sizes.size() - 1];
  return layout;
}

Bytes write_header(const SampleLayout& layout) {
  const std::string count = layout.stack ? concat(layout.count, ", ") : "";
  std::string header = concat("{'descr': '<u2', 'fortran_order': False, 'shape': (", count, layout.height,
                              ", ", layout.width, "), }");
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
  return file;
}

}  // namespace

extern const SampleHeader kNpyHeader = {read_header, write_header, ByteOrder::little, true};

}  // namespace kit
