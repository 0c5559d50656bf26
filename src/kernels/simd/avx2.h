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

/// Half of a vector's pixels as 32-bit floats. They carry a bias of 2^23, which turns an integer into a float
/// without a conversion and cancels in differences; it is exact, and so are the minimum and the difference.
struct PixelF32 {
  static constexpr float kBias = 8388608;

  __m256 v;
};
struct F32 {
  __m256 v;
};
/// A flag per lane of an F32.
struct Mask32 {
  __m256 v;
};

/// A number that pixels are multiplied by, at most kLargest in magnitude.
struct Factor {
  static constexpr float kLargest = 1e30f;

  F32 factor, offset;

  explicit Factor(float value)
      : factor{_mm256_set1_ps(value)}, offset{_mm256_set1_ps(-PixelF32::kBias * value)} {}
};

inline F32 operator-(PixelF32 a, PixelF32 b) { return {_mm256_sub_ps(a.v, b.v)}; }
inline PixelF32 min(PixelF32 a, PixelF32 b) { return {_mm256_min_ps(a.v, b.v)}; }
/// The product of pixel and factor, rounded once: the fused operation removes the exact product of the bias.
inline F32 operator*(PixelF32 a, Factor b) { return {_mm256_fmadd_ps(a.v, b.factor.v, b.offset.v)}; }
inline F32 operator+(F32 a, F32 b) { return {_mm256_add_ps(a.v, b.v)}; }
/// sum + a x b in this processor family's roundings: product and sum each.
inline F32 add_product(F32 sum, PixelF32 a, Factor b) { return sum + a * b; }
inline F32 abs(F32 a) { return {_mm256_andnot_ps(_mm256_set1_ps(-0.0f), a.v)}; }
inline Mask32 operator<(F32 a, F32 b) { return {_mm256_cmp_ps(a.v, b.v, _CMP_LT_OQ)}; }

/// A vector's pixels as floats: the lower four of each group and the upper four.
struct PixelHalves {
  U16 pixels;
  PixelF32 first, second;

  explicit PixelHalves(U16 values)
      : pixels(values),
        first{_mm256_castsi256_ps(_mm256_unpacklo_epi16(values.v, _mm256_set1_epi16(0x4b00)))},
        second{_mm256_castsi256_ps(_mm256_unpackhi_epi16(values.v, _mm256_set1_epi16(0x4b00)))} {}
};
/// Truncated `a` and `b` (0 up to below 65536) where flagged, the pixels of `otherwise` elsewhere.
inline U16 truncated_where(Mask32 in_a, F32 a, Mask32 in_b, F32 b, const PixelHalves& otherwise) {
  const Mask16 mask = {_mm256_packs_epi32(_mm256_castps_si256(in_a.v), _mm256_castps_si256(in_b.v))};
  return select(mask, U16{_mm256_packus_epi32(_mm256_cvttps_epi32(a.v), _mm256_cvttps_epi32(b.v))},
                otherwise.pixels);
}

}  // namespace filterprocessor::avx2

#endif
