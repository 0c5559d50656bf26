/// What levels without masked memory accesses and without instructions for long bit sets do.
#ifndef FILTERPROCESSOR_KERNELS_SIMD_PARTIAL_H
#define FILTERPROCESSOR_KERNELS_SIMD_PARTIAL_H

#include <cstring>

#include "kernels/simd/vocabulary.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

inline U16 load_part(const std::uint16_t* from, std::size_t count) {
  if (count == U16::lanes) return U16::load(from);
  if (count == 0) return U16::zero();
  alignas(sizeof(U16)) std::uint16_t values[U16::lanes] = {};
  std::memcpy(values, from, count * sizeof *from);
  return U16::load(values);
}
inline void store_part(U16 vector, std::uint16_t* to, std::size_t count) {
  if (count == U16::lanes) return vector.store(to);
  if (count == 0) return;
  alignas(sizeof(U16)) std::uint16_t values[U16::lanes];
  vector.store(values);
  std::memcpy(to, values, count * sizeof *to);
}

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

inline void add_long(const std::uint64_t* a, const std::uint64_t* b, std::uint64_t* sum,
                     std::size_t words) {
  std::uint64_t carry = 0;
  for (std::size_t i = 0; i < words; ++i) {
    const std::uint64_t part = a[i] + b[i];
    sum[i] = part + carry;
    carry = static_cast<std::uint64_t>(part < a[i]) | static_cast<std::uint64_t>(sum[i] < part);
  }
}

inline std::uint64_t nonzero_words(const std::uint64_t* words, std::size_t count) {
  std::uint64_t bits = 0;
  for (std::size_t i = 0; i < count; ++i) bits |= std::uint64_t{words[i] != 0} << i;
  return bits;
}

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL

#endif
