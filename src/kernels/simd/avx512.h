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

inline U16 operator-(U16 a, U16 b) { return {_mm512_sub_epi16(a.v, b.v)}; }

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

/// A value for each pixel from a table of up to `capacity`, by the pixel shifted right. Pixels past the
/// end take the last entry.
class SmallTable {
 public:
  static constexpr std::size_t capacity = 32;

  /// @param entries  `capacity` of them, the last one repeated as needed
  SmallTable(const std::uint16_t* entries, unsigned shift)
      : entries_(_mm512_loadu_si512(entries)), shift_(_mm_cvtsi32_si128(static_cast<int>(shift))) {}
  U16 operator()(U16 pixels) const {
    const __m512i index =
        _mm512_min_epu16(_mm512_srl_epi16(pixels.v, shift_), _mm512_set1_epi16(capacity - 1));
    return {_mm512_permutexvar_epi16(index, entries_)};
  }

 private:
  __m512i entries_;
  __m128i shift_;
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

}  // namespace filterprocessor::avx512

#endif
