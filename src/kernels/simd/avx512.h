/// The level of processors with VBMI2: F, BW, DQ, VL, VBMI and VBMI2 together.
#ifndef FILTERPROCESSOR_KERNELS_SIMD_AVX512_H
#define FILTERPROCESSOR_KERNELS_SIMD_AVX512_H

#include <cstddef>
#include <cstdint>
#include <immintrin.h>

#define MM(operation) _mm512_##operation
#define MM_WHOLE(operation) _mm512_##operation##_si512
#define MM_COMPARE(type) _mm512_cmp_##type##_mask

namespace filterprocessor::avx512 {
struct Registers {
  using U16 = __m512i;
  using Mask16 = std::uint32_t;
  using F64 = __m512d;
  using Mask64 = __mmask8;
  using F32 = __m512;
  using Mask32 = __mmask16;
  static constexpr std::size_t table_entries = 32;
};
}  // namespace filterprocessor::avx512

#include "kernels/simd/x86.h"

namespace filterprocessor::avx512 {

inline Mask16 Mask16::first(std::size_t count) {
  return {_bzhi_u32(~0u, static_cast<std::uint32_t>(count))};
}
inline Mask16 Mask16::group_starts() { return {0x01010101u}; }
inline Mask16 operator&(Mask16 a, Mask16 b) { return {a.v & b.v}; }
inline Mask16 operator|(Mask16 a, Mask16 b) { return {a.v | b.v}; }
inline Mask16 operator~(Mask16 a) { return {~a.v}; }
inline Mask16 without(Mask16 a, Mask16 b) { return {a.v & ~b.v}; }
inline bool Mask16::any() const { return v != 0; }
template <int N>
Mask16 Mask16::shifted_in_groups() const {
  return {v << N | 0x01010101u * ((1u << N) - 1)};
}
inline Mask16 Mask16::last_of_groups() const { return {(v >> 7 & 0x01010101u) * 0xffu}; }
template <int N>
Mask16 Mask16::shifted_by_groups() const {
  return {v << 8 * N | ((1u << 8 * N) - 1)};
}

inline U16 U16::load_first(const std::uint16_t* from, std::size_t count) {
  return {_mm512_maskz_loadu_epi16(Mask16::first(count).v, from)};
}
inline void U16::store_first(std::uint16_t* to, std::size_t count) const {
  _mm512_mask_storeu_epi16(to, Mask16::first(count).v, v);
}
inline void U16::store_where(Mask16 mask, std::uint16_t* to, U16 /*old*/) const {
  _mm512_mask_storeu_epi16(to, mask.v, v);
}
inline Mask16 U16::is_zero() const { return {_mm512_testn_epi16_mask(v, v)}; }
template <int N>
U16 U16::shifted_by_groups() const {
  return {_mm512_alignr_epi64(v, _mm512_setzero_si512(), 8 - 2 * N)};
}
inline U16 U16::last() const { return {_mm512_permutexvar_epi16(_mm512_set1_epi16(31), v)}; }
inline U16 U16::odd_lanes(U16 a, U16 b) {
  const __m512i index =
      _mm512_add_epi16(_mm512_slli_epi16(_mm512_cvtepu8_epi16(_mm256_setr_epi8(
                                             0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17,
                                             18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31)),
                                         1),
                       _mm512_set1_epi16(1));
  return {_mm512_permutex2var_epi16(a.v, index, b.v)};
}
inline U16 U16::odd_doubled() const {
  return {_mm512_shuffle_epi8(
      v, _mm512_broadcast_i32x4(_mm_setr_epi8(2, 3, 2, 3, 6, 7, 6, 7, 10, 11, 10, 11, 14, 15, 14, 15)))};
}
inline U16 U16::load_table(const std::uint16_t* entries) { return load(entries); }
inline U16 U16::lookup(U16 table, U16 index) { return {_mm512_permutexvar_epi16(index.v, table.v)}; }
inline U16 U16::load_groups(const std::uint16_t* from, const std::size_t (&offset)[groups]) {
  const auto piece = [&](std::size_t group) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + offset[group]));
  };
  __m512i all = _mm512_castsi128_si512(piece(0));
  all = _mm512_inserti64x2(all, piece(1), 1);
  all = _mm512_inserti64x2(all, piece(2), 2);
  return {_mm512_inserti64x2(all, piece(3), 3)};
}
inline void U16::store_groups(std::uint16_t* to, const std::size_t (&offset)[groups]) const {
  const auto put = [&](std::size_t group, __m128i piece) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to + offset[group]), piece);
  };
  put(0, _mm512_castsi512_si128(v));
  put(1, _mm512_extracti64x2_epi64(v, 1));
  put(2, _mm512_extracti64x2_epi64(v, 2));
  put(3, _mm512_extracti64x2_epi64(v, 3));
}

inline U16 select(Mask16 mask, U16 yes, U16 no) { return {_mm512_mask_blend_epi16(mask.v, no.v, yes.v)}; }
inline U16 keep(Mask16 mask, U16 a) { return {_mm512_maskz_mov_epi16(mask.v, a.v)}; }
inline U16 max_where(Mask16 mask, U16 a, U16 b) { return {_mm512_mask_max_epu16(a.v, mask.v, a.v, b.v)}; }
inline U16 increment_where(Mask16 mask, U16 value) {
  return {_mm512_mask_add_epi16(value.v, mask.v, value.v, _mm512_set1_epi16(1))};
}
inline U16 complement_nonzero(U16 a) {
  return {_mm512_maskz_sub_epi16(_mm512_test_epi16_mask(a.v, a.v), _mm512_set1_epi16(-1), a.v)};
}
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

inline Mask16 equal(U16 a, U16 b) { return {_mm512_cmpeq_epi16_mask(a.v, b.v)}; }
inline Mask16 differ(U16 a, U16 b) { return {_mm512_cmpneq_epi16_mask(a.v, b.v)}; }
inline Mask16 at_most(U16 a, U16 b) { return {_mm512_cmple_epu16_mask(a.v, b.v)}; }
inline Mask16 counts_below(U16 a, U16 b) { return {_mm512_cmplt_epi16_mask(a.v, b.v)}; }

inline std::uint64_t bits_of(const Mask16 (&masks)[2]) {
  return masks[0].v | std::uint64_t{masks[1].v} << 32;
}
inline std::uint32_t bits_of(const Mask16 (&masks)[1]) { return masks[0].v; }
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
inline void fill_first(U16 value, std::uint16_t* to, std::size_t count) { value.store_first(to, count); }

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
inline std::uint64_t nonzero_words(const std::uint64_t* words, std::size_t count) {
  std::uint64_t bits = 0;
  for (std::size_t i = 0; i < count; i += 8) {
    const auto here = static_cast<__mmask8>(_bzhi_u32(0xff, static_cast<std::uint32_t>(count - i)));
    const __m512i part = _mm512_maskz_loadu_epi64(here, words + i);
    bits |= std::uint64_t{_mm512_test_epi64_mask(part, part)} << i;
  }
  return bits;
}

inline Mask64 operator&(Mask64 a, Mask64 b) { return {static_cast<__mmask8>(a.v & b.v)}; }
inline Mask64 without(Mask64 a, Mask64 b) { return {static_cast<__mmask8>(a.v & ~b.v)}; }
inline F64 F64::counting_from(double start) {
  return {_mm512_add_pd(_mm512_set1_pd(start), _mm512_setr_pd(0, 1, 2, 3, 4, 5, 6, 7))};
}
inline void F64::store_truncated(Mask64 mask, std::uint16_t* to) const {
  const __m256i whole = _mm512_maskz_cvttpd_epi32(mask.v, v);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm256_cvtepi32_epi16(whole));
}
inline F64 abs(F64 a) { return {_mm512_abs_pd(a.v)}; }
inline F32 abs(F32 a) { return {_mm512_abs_ps(a.v)}; }

/// The even pixels and the odd ones.
struct PixelHalves {
  U16 pixels;
  PixelF32 first, second;

  explicit PixelHalves(U16 values)
      : pixels(values),
        first{_mm512_castsi512_ps(_mm512_ternarylogic_epi32(
            values.v, _mm512_set1_epi32(0xffff), _mm512_castps_si512(_mm512_set1_ps(PixelF32::kBias)),
            0xea))},  // (values & 0xffff) | bias
        second{_mm512_castsi512_ps(_mm512_shrdi_epi32(values.v, _mm512_set1_epi32(0x4b00), 16))} {}
};
/// The halves' pixels again.
inline U16 join(PixelF32 first, PixelF32 second) {
  const __m512i low_word_up = _mm512_set4_epi32(0x0d0c0000, 0x09080000, 0x05040000, 0x01000000);
  return {_mm512_mask_shuffle_epi8(_mm512_castps_si512(first.v), 0xccccccccccccccccu,
                                   _mm512_castps_si512(second.v), low_word_up)};
}
inline U16 truncated_where(Mask32 in_first, F32 first, Mask32 in_second, F32 second,
                           const PixelHalves& otherwise) {
  constexpr int down = _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC;
  const __m512 bias = _mm512_set1_ps(PixelF32::kBias);
  return join({_mm512_mask_add_round_ps(otherwise.first.v, in_first.v, first.v, bias, down)},
              {_mm512_mask_add_round_ps(otherwise.second.v, in_second.v, second.v, bias, down)});
}

/// To within the last bits of the quotient.
template <bool kWholeOffset>
class QuotientOf : public BiasedQuotient<kWholeOffset> {
 public:
  using BiasedQuotient<kWholeOffset>::BiasedQuotient;

  U16 operator()(U16 k, Mask16 mask) const {
    const PixelHalves halves(k);
    return keep(mask, join(divide(halves.first), divide(halves.second)));
  }

 private:
  PixelF32 divide(PixelF32 k) const {
    // An estimate of the reciprocal and one Newton step are as good as a rounded division and faster. The
    // last operation adds the bias again and truncates.
    const __m512 divisor = this->divisor(k);
    const __m512 estimate = _mm512_rcp14_ps(divisor);
    const __m512 correction = _mm512_fnmadd_ps(divisor, estimate, _mm512_set1_ps(2.0f));
    return {_mm512_fmadd_round_ps(_mm512_mul_ps(estimate, this->numerator_), correction,
                                  _mm512_set1_ps(PixelF32::kBias),
                                  _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC)};
  }
};

class Pixels {
 public:
  explicit Pixels(U16 pixels) : value(pixels), valid_(_mm512_cmpgt_epi16_mask(pixels.v, U16::zero().v)) {}
  Pixels with(U16 pixels) const { return {pixels, valid_}; }
  Mask16 valid() const { return {valid_}; }

  friend Mask16 close(const Pixels& a, const Pixels& b, U16 bound) {
    // At a distance of 65535 nothing is close.
    const __m512i distance =
        _mm512_mask_abs_epi16(_mm512_set1_epi16(-1), a.valid_, (b.value - a.value).v);
    return {_mm512_mask_cmplt_epu16_mask(b.valid_, distance, bound.v)};
  }

  U16 value;

 private:
  Pixels(U16 pixels, __mmask32 valid) : value(pixels), valid_(valid) {}

  __mmask32 valid_;
};

inline U16 mean_to_even_where(Mask16 mask, U16 a, U16 b) {
  const __m512i up = _mm512_avg_epu16(a.v, b.v);
  // One too high when the sum is odd and the mean, rounded up, is too: up & (a - b) & 1.
  const __m512i odd = _mm512_ternarylogic_epi32(up, (b - a).v, _mm512_set1_epi16(1), 0x80);
  return {_mm512_mask_sub_epi16(b.v, mask.v, up, odd)};
}
inline U16 add_where(Mask16 mask, U16 otherwise, U16 a, U16 b) {
  return {_mm512_mask_add_epi16(otherwise.v, mask.v, a.v, b.v)};
}
inline U16 rounded(F32 a, F32 b) {
  const __m512 bias = _mm512_set1_ps(PixelF32::kBias);
  return join({_mm512_add_ps(a.v, bias)}, {_mm512_add_ps(b.v, bias)});
}

template <int N>
struct Picker {
  static constexpr std::size_t lanes = 32;
  static constexpr std::size_t reach = N * lanes;

  __m512i positions;

  static Picker of(const std::uint16_t* positions) { return {_mm512_loadu_si512(positions)}; }
  void pick(const std::uint16_t* from, std::uint16_t* to) const {
    const auto part = [from](std::size_t i) { return _mm512_loadu_si512(from + i * lanes); };
    __m512i picked;
    if constexpr (N == 1) {
      picked = _mm512_permutexvar_epi16(positions, part(0));
    } else {
      picked = _mm512_permutex2var_epi16(part(0), positions, part(1));
    }
    if constexpr (N == 4) {
      const __mmask32 upper = _mm512_test_epi16_mask(positions, _mm512_set1_epi16(2 * lanes));
      const __m512i others = _mm512_permutex2var_epi16(part(2), positions, part(3));
      picked = _mm512_mask_blend_epi16(upper, picked, others);
    }
    _mm512_storeu_si512(to, picked);
  }
};

}  // namespace filterprocessor::avx512

#endif
