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
/// 65535 - a; 0 where a is 0.
inline U16 complement_nonzero(U16 a) {
  return {_mm512_maskz_sub_epi16(_mm512_test_epi16_mask(a.v, a.v), _mm512_set1_epi16(-1), a.v)};
}

}  // namespace filterprocessor::avx512

#endif
