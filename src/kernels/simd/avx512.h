#ifndef FILTERPROCESSOR_KERNELS_SIMD_AVX512_H
#define FILTERPROCESSOR_KERNELS_SIMD_AVX512_H

#include <cstddef>
#include <cstdint>
#include <immintrin.h>

namespace filterprocessor::avx512 {

struct Mask16 {
  std::uint32_t bits;

  /// The first `count` lanes.
  static Mask16 first(std::size_t count) { return {_bzhi_u32(~0u, static_cast<std::uint32_t>(count))}; }
  /// The first lane of every group.
  static Mask16 group_starts() { return {0x01010101u}; }

  friend Mask16 operator&(Mask16 a, Mask16 b) { return {a.bits & b.bits}; }
  friend Mask16 operator|(Mask16 a, Mask16 b) { return {a.bits | b.bits}; }
  friend Mask16 operator~(Mask16 a) { return {~a.bits}; }
  bool any() const { return bits != 0; }

  /// Moves every group's flags up by N lanes and sets the first N.
  template <int N>
  Mask16 shifted_in_groups() const {
    return {bits << N | 0x01010101u * ((1u << N) - 1)};
  }
  /// Every group gets the flag of its last lane.
  Mask16 last_of_groups() const { return {(bits >> 7 & 0x01010101u) * 0xffu}; }
  /// Moves the groups up by N and sets the first N.
  template <int N>
  Mask16 shifted_by_groups() const {
    return {bits << 8 * N | ((1u << 8 * N) - 1)};
  }
};

struct U16 {
  static constexpr std::size_t lanes = 32;
  static constexpr std::size_t groups = 4;

  __m512i v;

  static U16 zero() { return {_mm512_setzero_si512()}; }
  static U16 splat(std::uint16_t value) { return {_mm512_set1_epi16(static_cast<short>(value))}; }
  static U16 load(const std::uint16_t* from) { return {_mm512_loadu_si512(from)}; }
  /// Reads `count` values (at most `lanes`) and sets the other lanes to 0.
  static U16 load_first(const std::uint16_t* from, std::size_t count) {
    return {_mm512_maskz_loadu_epi16(Mask16::first(count).bits, from)};
  }
  void store(std::uint16_t* to) const { _mm512_storeu_si512(to, v); }
  void store_first(std::uint16_t* to, std::size_t count) const {
    _mm512_mask_storeu_epi16(to, Mask16::first(count).bits, v);
  }
  /// Writes the flagged lanes. `old` is what stands there.
  void store_where(Mask16 mask, std::uint16_t* to, U16 /*old*/) const {
    _mm512_mask_storeu_epi16(to, mask.bits, v);
  }

  Mask16 is_zero() const { return {_mm512_testn_epi16_mask(v, v)}; }

  /// Moves every group's lanes up by N; 0 moves in.
  template <int N>
  U16 shifted_in_groups() const {
    return {_mm512_bslli_epi128(v, 2 * N)};
  }
  /// Every lane of a group gets the group's last value.
  U16 last_of_groups() const { return {_mm512_shuffle_epi8(v, _mm512_set1_epi16(0x0f0e))}; }
  /// Moves the groups up by N; 0 moves in.
  template <int N>
  U16 shifted_by_groups() const {
    return {_mm512_alignr_epi64(v, _mm512_setzero_si512(), 8 - 2 * N)};
  }
  /// Every lane gets the last value.
  U16 last() const { return {_mm512_permutexvar_epi16(_mm512_set1_epi16(31), v)}; }
  /// The odd lanes of the two vectors, those of `a` first.
  static U16 odd_lanes(U16 a, U16 b) {
    const __m512i index = _mm512_add_epi16(
        _mm512_slli_epi16(_mm512_cvtepu8_epi16(_mm256_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12,
                                                                13, 14, 15, 16, 17, 18, 19, 20, 21, 22,
                                                                23, 24, 25, 26, 27, 28, 29, 30, 31)),
                          1),
        _mm512_set1_epi16(1));
    return {_mm512_permutex2var_epi16(a.v, index, b.v)};
  }
  /// Every odd lane twice.
  U16 odd_doubled() const {
    return {_mm512_shuffle_epi8(v, _mm512_broadcast_i32x4(_mm_setr_epi8(2, 3, 2, 3, 6, 7, 6, 7, 10, 11,
                                                                        10, 11, 14, 15, 14, 15)))};
  }
  /// Entries that lookup() takes from a table.
  static constexpr std::size_t table_entries = 32;
  /// The entries of `table`, a vector's worth, at indices below `table_entries`.
  static U16 lookup(U16 table, U16 index) { return {_mm512_permutexvar_epi16(index.v, table.v)}; }
};

inline U16 max(U16 a, U16 b) { return {_mm512_max_epu16(a.v, b.v)}; }
/// a or b by lane, whichever is larger where flagged; a elsewhere.
inline U16 max_where(Mask16 mask, U16 a, U16 b) {
  return {_mm512_mask_max_epu16(a.v, mask.bits, a.v, b.v)};
}
inline U16 select(Mask16 mask, U16 yes, U16 no) {
  return {_mm512_mask_blend_epi16(mask.bits, no.v, yes.v)};
}
/// 65535 - a; 0 where a is 0.
inline U16 complement_nonzero(U16 a) {
  return {_mm512_maskz_sub_epi16(_mm512_test_epi16_mask(a.v, a.v), _mm512_set1_epi16(-1), a.v)};
}

/// The lanes of a and b in turn: of their lower halves, and of their upper halves.
inline U16 interleave_low(U16 a, U16 b) {
  const __m512i order = _mm512_setr_epi64(0, 1, 8, 9, 2, 3, 10, 11);
  return {
      _mm512_permutex2var_epi64(_mm512_unpacklo_epi16(a.v, b.v), order, _mm512_unpackhi_epi16(a.v, b.v))};
}
inline U16 interleave_high(U16 a, U16 b) {
  const __m512i order = _mm512_setr_epi64(4, 5, 12, 13, 6, 7, 14, 15);
  return {
      _mm512_permutex2var_epi64(_mm512_unpacklo_epi16(a.v, b.v), order, _mm512_unpackhi_epi16(a.v, b.v))};
}

inline U16 operator-(U16 a, U16 b) { return {_mm512_sub_epi16(a.v, b.v)}; }
inline U16 operator&(U16 a, U16 b) { return {_mm512_and_si512(a.v, b.v)}; }
inline U16 operator>>(U16 a, unsigned count) {
  return {_mm512_srl_epi16(a.v, _mm_cvtsi32_si128(static_cast<int>(count)))};
}
inline U16 min(U16 a, U16 b) { return {_mm512_min_epu16(a.v, b.v)}; }
inline U16 add_saturated(U16 a, U16 b) { return {_mm512_adds_epu16(a.v, b.v)}; }
inline U16 subtract_saturated(U16 a, U16 b) { return {_mm512_subs_epu16(a.v, b.v)}; }
inline Mask16 equal(U16 a, U16 b) { return {_mm512_cmpeq_epi16_mask(a.v, b.v)}; }
inline Mask16 differ(U16 a, U16 b) { return {_mm512_cmpneq_epi16_mask(a.v, b.v)}; }
inline Mask16 at_most(U16 a, U16 b) { return {_mm512_cmple_epu16_mask(a.v, b.v)}; }

/// The flags of 64 lanes in order, the first in the lowest bit.
inline std::uint64_t bits_of(const Mask16 (&masks)[2]) {
  return masks[0].bits | std::uint64_t{masks[1].bits} << 32;
}
/// Writes `base` + the positions of the set bits, ascending, and up to 64 values of no meaning.
/// @return the number of set bits
inline std::size_t write_positions(std::uint64_t bits, std::uint16_t base, std::uint16_t* to) {
  const __m512i index =
      _mm512_set_epi64(0x3f3e3d3c3b3a3938, 0x3736353433323130, 0x2f2e2d2c2b2a2928, 0x2726252423222120,
                       0x1f1e1d1c1b1a1918, 0x1716151413121110, 0x0f0e0d0c0b0a0908, 0x0706050403020100);
  const __m512i found = _mm512_maskz_compress_epi8(bits, index);
  const __m512i start = _mm512_set1_epi16(static_cast<short>(base));
  const auto widened = [&](__m256i part) { return _mm512_add_epi16(_mm512_cvtepu8_epi16(part), start); };
  const auto count = static_cast<std::size_t>(__builtin_popcountll(bits));
  _mm512_storeu_si512(to, widened(_mm512_castsi512_si256(found)));
  if (count > 32) _mm512_storeu_si512(to + 32, widened(_mm512_extracti64x4_epi64(found, 1)));
  return count;
}

/// Writes the first `count` lanes, 1 to all, of a vector of equal values.
inline void fill_first(U16 value, std::uint16_t* to, std::size_t count) { value.store_first(to, count); }

/// Adds two numbers of `words` words, lowest first.
inline void add_long(const std::uint64_t* a, const std::uint64_t* b, std::uint64_t* sum,
                     std::size_t words) {
  std::uint32_t carry = 0;
  for (std::size_t i = 0; i < words; i += 8) {
    const auto here = static_cast<__mmask8>(_bzhi_u32(0xff, static_cast<std::uint32_t>(words - i)));
    const __m512i x = _mm512_maskz_loadu_epi64(here, a + i);
    const __m512i part = _mm512_add_epi64(x, _mm512_maskz_loadu_epi64(here, b + i));
    // A word passes a carry on when all its bits are set; adding the masks finds where all carries end
    // up.
    const std::uint32_t passing = _mm512_cmpeq_epi64_mask(part, _mm512_set1_epi64(-1));
    const std::uint32_t made = _mm512_cmplt_epu64_mask(part, x);
    const std::uint32_t carries = (made << 1 | carry) + passing;
    const auto raised = static_cast<__mmask8>(carries ^ passing);
    carry = carries >> 8;
    _mm512_mask_storeu_epi64(sum + i, here,
                             _mm512_mask_add_epi64(part, raised, part, _mm512_set1_epi64(1)));
  }
}
/// A bit for each of up to 64 words: whether it is not 0.
inline std::uint64_t nonzero_words(const std::uint64_t* words, std::size_t count) {
  std::uint64_t bits = 0;
  for (std::size_t i = 0; i < count; i += 8) {
    const auto here = static_cast<__mmask8>(_bzhi_u32(0xff, static_cast<std::uint32_t>(count - i)));
    const __m512i part = _mm512_maskz_loadu_epi64(here, words + i);
    bits |= std::uint64_t{_mm512_test_epi64_mask(part, part)} << i;
  }
  return bits;
}

}  // namespace filterprocessor::avx512

#endif
