#include "kernels/disparity/depth_lookup_plain.h"

namespace filterprocessor::plain {

// Without the word that the target is apart from the table, every load would wait for the store before
// it.

void convert_plain_codes(const std::uint16_t* source, std::uint16_t* __restrict target, std::size_t count,
                         const std::uint16_t* table) {
  for (std::size_t i = 0; i < count; ++i) target[i] = table[source[i]];
}

void convert_packed_codes(const std::uint16_t* source, std::uint16_t* __restrict target,
                          std::size_t count, const std::uint16_t* table) {
  for (std::size_t i = 0; i < count; ++i) {
    target[i] = static_cast<std::uint16_t>((table[source[i] >> 4] << 4) | (source[i] & 15));
  }
}

}  // namespace filterprocessor::plain
