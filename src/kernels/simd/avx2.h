#ifndef FILTERPROCESSOR_KERNELS_SIMD_AVX2_H
#define FILTERPROCESSOR_KERNELS_SIMD_AVX2_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <immintrin.h>

namespace filterprocessor::avx2 {

struct Mask16 {
  __m256i v;

  /// The first `count` lanes.
  static Mask16 first(std::size_t count) {
    const __m256i index = _mm256_setr_epi16(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    return {_mm256_cmpgt_epi16(_mm256_set1_epi16(static_cast<short>(count)), index)};
  }
  /// The first lane of every group.
  static Mask16 group_starts() { return {_mm256_setr_epi64x(0xffff, 0, 0xffff, 0)}; }

  friend Mask16 operator&(Mask16 a, Mask16 b) { return {_mm256_and_si256(a.v, b.v)}; }
  friend Mask16 operator|(Mask16 a, Mask16 b) { return {_mm256_or_si256(a.v, b.v)}; }
  friend Mask16 operator~(Mask16 a) { return {_mm256_xor_si256(a.v, _mm256_set1_epi16(-1))}; }
  bool any() const { return !_mm256_testz_si256(v, v); }

  /// Moves every group's flags up by N lanes and sets the first N.
  template <int N>
  Mask16 shifted_in_groups() const {
    return {_mm256_alignr_epi8(v, _mm256_set1_epi16(-1), 16 - 2 * N)};
  }
  /// Every group gets the flag of its last lane.
  Mask16 last_of_groups() const { return {_mm256_shuffle_epi8(v, _mm256_set1_epi16(0x0f0e))}; }
  /// Moves the groups up by N and sets the first N.
  template <int N>
  Mask16 shifted_by_groups() const {
    static_assert(N == 1);
    return {_mm256_permute2x128_si256(v, _mm256_set1_epi16(-1), 0x02)};
  }
};

struct U16 {
  static constexpr std::size_t lanes = 16;
  static constexpr std::size_t groups = 2;

  __m256i v;

  static U16 zero() { return {_mm256_setzero_si256()}; }
  static U16 splat(std::uint16_t value) { return {_mm256_set1_epi16(static_cast<short>(value))}; }
  static U16 load(const std::uint16_t* from) {
    return {_mm256_loadu_si256(reinterpret_cast<const __m256i*>(from))};
  }
  /// Reads `count` values (at most `lanes`) and sets the other lanes to 0.
  static U16 load_first(const std::uint16_t* from, std::size_t count) {
    if (count == lanes) return load(from);
    alignas(32) std::uint16_t values[lanes] = {};
    std::memcpy(values, from, count * sizeof *from);
    return load(values);
  }
  void store(std::uint16_t* to) const { _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), v); }
  void store_first(std::uint16_t* to, std::size_t count) const {
    if (count == lanes) return store(to);
    alignas(32) std::uint16_t values[lanes];
    store(values);
    std::memcpy(to, values, count * sizeof *to);
  }
  /// Writes the flagged lanes. `old` is what stands there.
  void store_where(Mask16 mask, std::uint16_t* to, U16 old) const {
    U16{_mm256_blendv_epi8(old.v, v, mask.v)}.store(to);
  }

  Mask16 is_zero() const { return {_mm256_cmpeq_epi16(v, _mm256_setzero_si256())}; }

  /// Moves every group's lanes up by N; 0 moves in.
  template <int N>
  U16 shifted_in_groups() const {
    return {_mm256_bslli_epi128(v, 2 * N)};
  }
  /// Every lane of a group gets the group's last value.
  U16 last_of_groups() const { return {_mm256_shuffle_epi8(v, _mm256_set1_epi16(0x0f0e))}; }
  /// Moves the groups up by N; 0 moves in.
  template <int N>
  U16 shifted_by_groups() const {
    static_assert(N == 1);
    return {_mm256_permute2x128_si256(v, v, 0x08)};
  }
  /// Every lane gets the last value.
  U16 last() const {
    return {_mm256_permute4x64_epi64(_mm256_shuffle_epi8(v, _mm256_set1_epi16(0x0f0e)), 0xff)};
  }
  /// The odd lanes of the two vectors, those of `a` first.
  static U16 odd_lanes(U16 a, U16 b) {
    const __m256i packed = _mm256_packus_epi32(_mm256_srli_epi32(a.v, 16), _mm256_srli_epi32(b.v, 16));
    return {_mm256_permute4x64_epi64(packed, 0xd8)};
  }
  /// Every odd lane twice.
  U16 odd_doubled() const {
    return {_mm256_shuffle_epi8(v, _mm256_broadcastsi128_si256(_mm_setr_epi8(
                                       2, 3, 2, 3, 6, 7, 6, 7, 10, 11, 10, 11, 14, 15, 14, 15)))};
  }
  /// Entries that lookup() takes from a table.
  static constexpr std::size_t table_entries = 8;
  /// The entries of `table`, a vector's worth, at indices below `table_entries`.
  static U16 lookup(U16 table, U16 index) {
    const __m256i low = _mm256_permute4x64_epi64(table.v, 0x44);
    const __m256i bytes = _mm256_add_epi16(_mm256_mullo_epi16(index.v, _mm256_set1_epi16(0x0202)),
                                           _mm256_set1_epi16(0x0100));
    return {_mm256_shuffle_epi8(low, bytes)};
  }
};

inline U16 max(U16 a, U16 b) { return {_mm256_max_epu16(a.v, b.v)}; }
/// a or b by lane, whichever is larger where flagged; a elsewhere.
inline U16 max_where(Mask16 mask, U16 a, U16 b) {
  return {_mm256_max_epu16(a.v, _mm256_and_si256(mask.v, b.v))};
}
inline U16 select(Mask16 mask, U16 yes, U16 no) { return {_mm256_blendv_epi8(no.v, yes.v, mask.v)}; }
/// 65535 - a; 0 where a is 0.
inline U16 complement_nonzero(U16 a) {
  return {_mm256_andnot_si256(_mm256_or_si256(a.v, a.is_zero().v), _mm256_set1_epi16(-1))};
}

/// The lanes of a and b in turn: of their lower halves, and of their upper halves.
inline U16 interleave_low(U16 a, U16 b) {
  return {
      _mm256_permute2x128_si256(_mm256_unpacklo_epi16(a.v, b.v), _mm256_unpackhi_epi16(a.v, b.v), 0x20)};
}
inline U16 interleave_high(U16 a, U16 b) {
  return {
      _mm256_permute2x128_si256(_mm256_unpacklo_epi16(a.v, b.v), _mm256_unpackhi_epi16(a.v, b.v), 0x31)};
}

inline U16 operator-(U16 a, U16 b) { return {_mm256_sub_epi16(a.v, b.v)}; }
inline U16 operator&(U16 a, U16 b) { return {_mm256_and_si256(a.v, b.v)}; }
inline U16 operator>>(U16 a, unsigned count) {
  return {_mm256_srl_epi16(a.v, _mm_cvtsi32_si128(static_cast<int>(count)))};
}
inline U16 min(U16 a, U16 b) { return {_mm256_min_epu16(a.v, b.v)}; }
inline U16 add_saturated(U16 a, U16 b) { return {_mm256_adds_epu16(a.v, b.v)}; }
inline U16 subtract_saturated(U16 a, U16 b) { return {_mm256_subs_epu16(a.v, b.v)}; }
inline Mask16 equal(U16 a, U16 b) { return {_mm256_cmpeq_epi16(a.v, b.v)}; }
inline Mask16 differ(U16 a, U16 b) { return ~equal(a, b); }
inline Mask16 at_most(U16 a, U16 b) { return equal(min(a, b), a); }

/// The flags of 64 lanes in order, the first in the lowest bit.
inline std::uint64_t bits_of(const Mask16 (&masks)[4]) {
  const auto half = [](Mask16 a, Mask16 b) {
    const __m256i bytes = _mm256_permute4x64_epi64(_mm256_packs_epi16(a.v, b.v), 0xd8);
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(bytes));
  };
  return half(masks[0], masks[1]) | std::uint64_t{half(masks[2], masks[3])} << 32;
}
/// Writes `base` + the positions of the set bits, ascending, and up to 64 values of no meaning.
/// @return the number of set bits
inline std::size_t write_positions(std::uint64_t bits, std::uint16_t base, std::uint16_t* to) {
  const auto count = static_cast<std::size_t>(__builtin_popcountll(bits));
  std::size_t done = 0;
  do {
    for (std::size_t i = 0; i < 4; ++i) {
      to[done + i] = static_cast<std::uint16_t>(base + static_cast<unsigned>(_tzcnt_u64(bits)));
      bits &= bits - 1;
    }
    done += 4;
  } while (done < count);
  return count;
}

/// Writes the first `count` lanes, 1 to all, of a vector of equal values.
inline void fill_first(U16 value, std::uint16_t* to, std::size_t count) {
  // Overlapping stores: reading what stands there would wait for a neighbour's store.
  const auto four = static_cast<std::uint64_t>(_mm256_extract_epi64(value.v, 0));
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

}  // namespace filterprocessor::avx2

#endif
