#include "kernels/disparity/depth_lookup_plain.h"

namespace filterprocessor::plain {

namespace {
std::uint16_t entry(const std::uint16_t* table, std::size_t size, std::size_t code) {
  return code < size ? table[code] : std::uint16_t{0};
}
}  // namespace

void convert_plain_codes(const std::uint16_t* source, std::uint16_t* target, std::size_t count,
                         const std::uint16_t* table, std::size_t size) {
  for (std::size_t i = 0; i < count; ++i) target[i] = entry(table, size, source[i]);
}

void convert_packed_codes(const std::uint16_t* source, std::uint16_t* target, std::size_t count,
                          const std::uint16_t* table, std::size_t size) {
  for (std::size_t i = 0; i < count; ++i) {
    const int depth = entry(table, size, source[i] >> 4);
    target[i] = static_cast<std::uint16_t>((depth << 4) | (source[i] & 15));
  }
}

}  // namespace filterprocessor::plain
