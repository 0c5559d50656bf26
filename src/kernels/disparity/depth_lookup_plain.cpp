#include "kernels/disparity/depth_lookup.h"

namespace filterprocessor::plain {

// Without the word that the table is apart from the target, every load from it would wait for the store
// before.

void convert_plain_codes(const std::uint16_t* source, std::uint16_t* target, std::size_t count,
                         const std::uint16_t* __restrict table) {
  for (std::size_t i = 0; i < count; ++i) target[i] = table[source[i]];
}

void convert_packed_codes(const std::uint16_t* source, std::uint16_t* target, std::size_t count,
                          const std::uint16_t* __restrict table) {
  for (std::size_t i = 0; i < count; ++i) {
    target[i] = static_cast<std::uint16_t>((table[source[i] >> 4] << 4) | (source[i] & 15));
  }
}

extern const DepthLookupKernels depth_lookup = {convert_plain_codes, convert_packed_codes, nullptr,
                                                nullptr};

}  // namespace filterprocessor::plain
