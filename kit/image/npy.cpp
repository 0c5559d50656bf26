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
  constexpr std::size_t most = 65535;
  if (length > most) fail("has a header of ", length, " bytes; at most ", most, " are read");
  if (length > file.size() - start) fail("ends inside its header");
  file = file.subspan(start + length);
  return text.substr(start, length);
}

}  // namespace

Image decode_npy(ByteView file, const Size&) {
  const Json header = parse_header(take_header(file));
  const Json &type = header["descr"], &order = header["fortran_order"], &shape = header["shape"];
  if (type.is_array()) fail("has a structured type; expected '<u2' or '>u2'");
  if (!type.is_string() || !order.is_boolean() || !shape.is_array()) fail_malformed();
  std::vector<std::string> sizes;
  for (const Json& size : shape) sizes.push_back(size.is_number_unsigned() ? size.dump() : "");
  if (std::find(sizes.begin(), sizes.end(), "") != sizes.end()) fail_malformed();
  if (type != "<u2" && type != ">u2") {
    fail("has elements of type '", type.get<std::string>(),
         "'; expected 16-bit unsigned, '<u2' or '>u2'");
  }
  if (order.get<bool>()) fail("is in column order; expected C order (fortran_order False)");
  if (sizes.size() != 2) fail("has the shape (", join(sizes, ", "), "); expected (height, width)");
  return read_samples(file, type == "<u2" ? ByteOrder::little : ByteOrder::big, shape[1], shape[0]);
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
