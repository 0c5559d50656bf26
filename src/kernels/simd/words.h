/// Work on 64-bit words for levels without instructions for it.
#ifndef FILTERPROCESSOR_KERNELS_SIMD_WORDS_H
#define FILTERPROCESSOR_KERNELS_SIMD_WORDS_H

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

/// Writes the first `count` of equal values, at least 1, of which `four` holds four.
inline void fill_by_fours(std::uint64_t four, std::uint16_t* to, std::size_t count) {
  // Overlapping stores: reading what stands there would wait for a neighbour's store.
  if (count < 4) {
    to[0] = to[count / 2] = to[count - 1] = static_cast<std::uint16_t>(four);
    return;
  }
  for (std::size_t i = 0; i + 4 < count; i += 4) std::memcpy(to + i, &four, sizeof four);
  std::memcpy(to + count - 4, &four, sizeof four);
}

/// Adds two numbers of `words` words, lowest first.
inline void add_long(const std::uint64_t* a, const std::uint64_t* b, std::uint64_t* sum,
                     std::size_t words) {
  std::uint64_t carry = 0;
  for (std::size_t i = 0; i < words; ++i) {
    const std::uint64_t part = a[i] + b[i];
    sum[i] = part + carry;
    carry = static_cast<std::uint64_t>(part < a[i]) | static_cast<std::uint64_t>(sum[i] < part);
  }
}

/// A bit for each of up to 64 words: whether it is not 0.
inline std::uint64_t nonzero_words(const std::uint64_t* words, std::size_t count) {
  std::uint64_t bits = 0;
  for (std::size_t i = 0; i < count; ++i) bits |= std::uint64_t{words[i] != 0} << i;
  return bits;
}

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL

#endif
