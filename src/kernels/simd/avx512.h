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
  /// `table_entries` entries for lookup().
  static U16 load_table(const std::uint16_t* entries) { return load(entries); }
  /// The entries of a loaded table at indices below `table_entries`.
  static U16 lookup(U16 table, U16 index) { return {_mm512_permutexvar_epi16(index.v, table.v)}; }

  /// Reads eight values per group, group g at from + offset[g].
  static U16 load_groups(const std::uint16_t* from, const std::size_t (&offset)[groups]) {
    const auto piece = [&](std::size_t group) {
      return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + offset[group]));
    };
    __m512i all = _mm512_castsi128_si512(piece(0));
    all = _mm512_inserti64x2(all, piece(1), 1);
    all = _mm512_inserti64x2(all, piece(2), 2);
    return {_mm512_inserti64x2(all, piece(3), 3)};
  }
  void store_groups(std::uint16_t* to, const std::size_t (&offset)[groups]) const {
    const auto put = [&](std::size_t group, __m128i piece) {
      _mm_storeu_si128(reinterpret_cast<__m128i*>(to + offset[group]), piece);
    };
    put(0, _mm512_castsi512_si128(v));
    put(1, _mm512_extracti64x2_epi64(v, 1));
    put(2, _mm512_extracti64x2_epi64(v, 2));
    put(3, _mm512_extracti64x2_epi64(v, 3));
  }
};

inline U16 operator&(U16 a, U16 b) { return {_mm512_and_si512(a.v, b.v)}; }
inline U16 max(U16 a, U16 b) { return {_mm512_max_epu16(a.v, b.v)}; }
/// a or b by lane, whichever is larger where flagged; a elsewhere.
inline U16 max_where(Mask16 mask, U16 a, U16 b) {
  return {_mm512_mask_max_epu16(a.v, mask.bits, a.v, b.v)};
}
inline U16 select(Mask16 mask, U16 yes, U16 no) {
  return {_mm512_mask_blend_epi16(mask.bits, no.v, yes.v)};
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

inline U16 operator|(U16 a, U16 b) { return {_mm512_or_si512(a.v, b.v)}; }
inline U16 operator-(U16 a, U16 b) { return {_mm512_sub_epi16(a.v, b.v)}; }
/// The flags of a that b lacks.
inline Mask16 without(Mask16 a, Mask16 b) { return {a.bits & ~b.bits}; }
/// a <= b, unsigned.
inline Mask16 at_most(U16 a, U16 b) { return {_mm512_cmple_epu16_mask(a.v, b.v)}; }
/// a where flagged, 0 elsewhere.
inline U16 keep(Mask16 mask, U16 a) { return {_mm512_maskz_mov_epi16(mask.bits, a.v)}; }

template <int N>
U16 shifted_left(U16 a) {
  return {_mm512_slli_epi16(a.v, N)};
}
template <int N>
U16 shifted_right(U16 a) {
  return {_mm512_srli_epi16(a.v, N)};
}
/// The low 14 bits of each lane as a two's-complement number.
inline U16 sign_extended_14(U16 a) { return {_mm512_srai_epi16(_mm512_slli_epi16(a.v, 2), 2)}; }

struct Mask64 {
  __mmask8 bits;

  friend Mask64 operator&(Mask64 a, Mask64 b) { return {static_cast<__mmask8>(a.bits & b.bits)}; }
};
/// The flags of a that b lacks.
inline Mask64 without(Mask64 a, Mask64 b) { return {static_cast<__mmask8>(a.bits & ~b.bits)}; }

struct F64 {
  static constexpr std::size_t lanes = 8;

  __m512d v;

  static F64 splat(double value) { return {_mm512_set1_pd(value)}; }
  /// start, start + 1, ...
  static F64 counting_from(double start) {
    return {_mm512_add_pd(_mm512_set1_pd(start), _mm512_setr_pd(0, 1, 2, 3, 4, 5, 6, 7))};
  }
  /// Writes the flagged lanes (0 to below 65536) truncated, and 0 for the others.
  void store_truncated(Mask64 mask, std::uint16_t* to) const {
    const __m256i whole = _mm512_maskz_cvttpd_epi32(mask.bits, v);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm256_cvtepi32_epi16(whole));
  }
};

inline F64 operator+(F64 a, F64 b) { return {_mm512_add_pd(a.v, b.v)}; }
inline F64 operator-(F64 a, F64 b) { return {_mm512_sub_pd(a.v, b.v)}; }
inline F64 operator*(F64 a, F64 b) { return {_mm512_mul_pd(a.v, b.v)}; }
inline F64 operator/(F64 a, F64 b) { return {_mm512_div_pd(a.v, b.v)}; }
/// a x b + c, rounded once.
inline F64 fused_multiply_add(F64 a, F64 b, F64 c) { return {_mm512_fmadd_pd(a.v, b.v, c.v)}; }
inline F64 abs(F64 a) { return {_mm512_abs_pd(a.v)}; }
inline Mask64 operator<(F64 a, F64 b) { return {_mm512_cmp_pd_mask(a.v, b.v, _CMP_LT_OQ)}; }
inline Mask64 operator>(F64 a, F64 b) { return {_mm512_cmp_pd_mask(a.v, b.v, _CMP_GT_OQ)}; }
inline Mask64 operator<=(F64 a, F64 b) { return {_mm512_cmp_pd_mask(a.v, b.v, _CMP_LE_OQ)}; }
inline Mask64 operator>=(F64 a, F64 b) { return {_mm512_cmp_pd_mask(a.v, b.v, _CMP_GE_OQ)}; }

inline U16 operator>>(U16 a, unsigned count) {
  return {_mm512_srl_epi16(a.v, _mm_cvtsi32_si128(static_cast<int>(count)))};
}
inline U16 min(U16 a, U16 b) { return {_mm512_min_epu16(a.v, b.v)}; }
inline U16 add_saturated(U16 a, U16 b) { return {_mm512_adds_epu16(a.v, b.v)}; }
inline U16 subtract_saturated(U16 a, U16 b) { return {_mm512_subs_epu16(a.v, b.v)}; }
inline Mask16 equal(U16 a, U16 b) { return {_mm512_cmpeq_epi16_mask(a.v, b.v)}; }
inline Mask16 differ(U16 a, U16 b) { return {_mm512_cmpneq_epi16_mask(a.v, b.v)}; }

/// The flags of 64 lanes in order, the first in the lowest bit.
inline std::uint64_t bits_of(const Mask16 (&masks)[2]) {
  return masks[0].bits | std::uint64_t{masks[1].bits} << 32;
}
/// The same for 32 lanes.
inline std::uint32_t bits_of(const Mask16 (&masks)[1]) { return masks[0].bits; }
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

/// Half of a vector's pixels as 32-bit floats. They carry a bias of 2^23, which turns an integer into a
/// float without a conversion and cancels in differences; it is exact, and so are the minimum and the
/// difference.
struct PixelF32 {
  static constexpr float kBias = 8388608;

  __m512 v;
};
struct F32 {
  __m512 v;
};
/// A flag per lane of an F32.
struct Mask32 {
  __mmask16 bits;
};

/// A number that pixels are multiplied by, at most kLargest in magnitude.
struct Factor {
  static constexpr float kLargest = 1e30f;

  F32 factor, offset;

  explicit Factor(float value)
      : factor{_mm512_set1_ps(value)}, offset{_mm512_set1_ps(-PixelF32::kBias * value)} {}
};

inline F32 operator-(PixelF32 a, PixelF32 b) { return {_mm512_sub_ps(a.v, b.v)}; }
inline PixelF32 min(PixelF32 a, PixelF32 b) { return {_mm512_min_ps(a.v, b.v)}; }
/// The product of pixel and factor, rounded once: the fused operation removes the exact product of the
/// bias.
inline F32 operator*(PixelF32 a, Factor b) { return {_mm512_fmadd_ps(a.v, b.factor.v, b.offset.v)}; }
inline F32 operator+(F32 a, F32 b) { return {_mm512_add_ps(a.v, b.v)}; }
/// sum + a x b in this processor family's roundings: product and sum each.
inline F32 add_product(F32 sum, PixelF32 a, Factor b) { return sum + a * b; }
inline F32 abs(F32 a) { return {_mm512_abs_ps(a.v)}; }
inline Mask32 operator<(F32 a, F32 b) { return {_mm512_cmp_ps_mask(a.v, b.v, _CMP_LT_OQ)}; }

/// A vector's pixels as floats: the even ones and the odd ones.
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
/// trunc(numerator / (k + offset)) in 32-bit float, to within the last bits of the quotient.
/// kWholeOffset: the offset is one that takes() accepts, and the sum costs an operation less.
template <bool kWholeOffset>
class QuotientOf {
 public:
  static constexpr float kBias = 8388608;

  static bool takes(float offset) { return (offset - kBias) + kBias == offset; }

  QuotientOf(float numerator, float offset)
      : numerator_(_mm512_set1_ps(numerator)),
        offset_(_mm512_set1_ps(kWholeOffset ? offset - kBias : offset)) {}

  /// The quotients of the flagged lanes, which must lie between 0 and 65535; 0 elsewhere.
  U16 operator()(U16 k, Mask16 mask) const {
    const PixelHalves halves(k);
    return keep(mask, join(divide(halves.first), divide(halves.second)));
  }

 private:
  PixelF32 divide(PixelF32 biased) const {
    // An estimate of the reciprocal and one Newton step are as good as a rounded division and faster. The
    // last operation adds the bias again and truncates.
    const __m512 bias = _mm512_set1_ps(kBias);
    __m512 divisor = biased.v;
    if constexpr (!kWholeOffset) divisor = _mm512_sub_ps(divisor, bias);
    divisor = _mm512_add_ps(divisor, offset_);
    const __m512 estimate = _mm512_rcp14_ps(divisor);
    const __m512 correction = _mm512_fnmadd_ps(divisor, estimate, _mm512_set1_ps(2.0f));
    return {_mm512_fmadd_round_ps(_mm512_mul_ps(estimate, numerator_), correction, bias,
                                  _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC)};
  }

  __m512 numerator_;
  __m512 offset_;
};

/// Truncated `a` and `b` (0 up to below 65536) where flagged, the pixels of `otherwise` elsewhere.
inline U16 truncated_where(Mask32 in_a, F32 a, Mask32 in_b, F32 b, const PixelHalves& otherwise) {
  constexpr int down = _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC;
  const __m512 bias = _mm512_set1_ps(PixelF32::kBias);
  return join({_mm512_mask_add_round_ps(otherwise.first.v, in_a.bits, a.v, bias, down)},
              {_mm512_mask_add_round_ps(otherwise.second.v, in_b.bits, b.v, bias, down)});
}

/// Transposes the eight by eight values of every group.
[[gnu::always_inline]] inline void transpose_groups(U16 (&rows)[8]) {
  __m512i pairs[8];
  for (int i = 0; i < 8; i += 2) {
    pairs[i] = _mm512_unpacklo_epi16(rows[i].v, rows[i + 1].v);
    pairs[i + 1] = _mm512_unpackhi_epi16(rows[i].v, rows[i + 1].v);
  }
  __m512i fours[8];
  for (int i = 0; i < 8; i += 4) {
    for (int j = 0; j < 2; ++j) {
      fours[i + 2 * j] = _mm512_unpacklo_epi32(pairs[i + j], pairs[i + j + 2]);
      fours[i + 2 * j + 1] = _mm512_unpackhi_epi32(pairs[i + j], pairs[i + j + 2]);
    }
  }
  for (int i = 0; i < 4; ++i) {
    rows[2 * i].v = _mm512_unpacklo_epi64(fours[i], fours[i + 4]);
    rows[2 * i + 1].v = _mm512_unpackhi_epi64(fours[i], fours[i + 4]);
  }
}

/// Pixels that know where they are valid (1 to 32767).
class Pixels {
 public:
  explicit Pixels(U16 pixels) : value(pixels), valid_(_mm512_cmpgt_epi16_mask(pixels.v, U16::zero().v)) {}
  /// Other pixels, valid in the same places.
  Pixels with(U16 pixels) const { return {pixels, valid_}; }
  Mask16 valid() const { return {valid_}; }

  /// Where a and b are valid and closer than `bound`. Equal pixels may be flagged or not.
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

/// The mean of a and b (up to 32767), ties to even, where flagged; b elsewhere.
inline U16 mean_to_even_where(Mask16 mask, U16 a, U16 b) {
  const __m512i up = _mm512_avg_epu16(a.v, b.v);
  // One too high when the sum is odd and the mean, rounded up, is too: up & (a - b) & 1.
  const __m512i odd = _mm512_ternarylogic_epi32(up, (b - a).v, _mm512_set1_epi16(1), 0x80);
  return {_mm512_mask_sub_epi16(b.v, mask.bits, up, odd)};
}
/// a + b where flagged, otherwise `otherwise`.
inline U16 add_where(Mask16 mask, U16 otherwise, U16 a, U16 b) {
  return {_mm512_mask_add_epi16(otherwise.v, mask.bits, a.v, b.v)};
}
/// Signed a x b / 2^15, rounded; halves up.
inline U16 multiply_round(U16 a, U16 b) { return {_mm512_mulhrs_epi16(a.v, b.v)}; }
/// a and b (0 up to 65535), rounded; ties to even.
inline U16 rounded(F32 a, F32 b) {
  const __m512 bias = _mm512_set1_ps(PixelF32::kBias);
  return join({_mm512_add_ps(a.v, bias)}, {_mm512_add_ps(b.v, bias)});
}
/// value + 1 where flagged.
inline U16 increment_where(Mask16 mask, U16 value) {
  return {_mm512_mask_add_epi16(value.v, mask.bits, value.v, _mm512_set1_epi16(1))};
}
/// a < b as signed numbers.
inline Mask16 below(U16 a, U16 b) { return {_mm512_cmplt_epi16_mask(a.v, b.v)}; }

/// Picks pixels out of the `reach` from an address on. N is 1, 2 or 4.
template <int N>
struct Picker {
  static constexpr std::size_t lanes = 32;
  static constexpr std::size_t reach = N * lanes;

  __m512i positions;

  /// @param positions  `lanes` of them, below `reach`
  static Picker of(const std::uint16_t* positions) { return {_mm512_loadu_si512(positions)}; }
  /// Writes `lanes` pixels.
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
