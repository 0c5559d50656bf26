#ifndef FILTERPROCESSOR_KERNELS_SIMD_AVX2_H
#define FILTERPROCESSOR_KERNELS_SIMD_AVX2_H

#include <cstddef>
#include <immintrin.h>

#define MM(operation) _mm256_##operation
#define MM_WHOLE(operation) _mm256_##operation##_si256
#define MM_COMPARE(type) _mm256_cmp_##type

namespace filterprocessor::avx2 {
struct Registers {
  using U16 = __m256i;
  using Mask16 = __m256i;
  using F64 = __m256d;
  using Mask64 = __m256d;
  using F32 = __m256;
  using Mask32 = __m256;
  static constexpr std::size_t table_entries = 8;
};
}  // namespace filterprocessor::avx2

#include "kernels/simd/partial.h"
#include "kernels/simd/x86.h"

namespace filterprocessor::avx2 {

inline Mask16 Mask16::first(std::size_t count) {
  const __m256i index = _mm256_setr_epi16(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
  return {_mm256_cmpgt_epi16(_mm256_set1_epi16(static_cast<short>(count)), index)};
}
inline Mask16 Mask16::group_starts() { return {_mm256_setr_epi64x(0xffff, 0, 0xffff, 0)}; }
inline Mask16 operator&(Mask16 a, Mask16 b) { return {_mm256_and_si256(a.v, b.v)}; }
inline Mask16 operator|(Mask16 a, Mask16 b) { return {_mm256_or_si256(a.v, b.v)}; }
inline Mask16 operator~(Mask16 a) { return {_mm256_xor_si256(a.v, _mm256_set1_epi16(-1))}; }
inline Mask16 without(Mask16 a, Mask16 b) { return {_mm256_andnot_si256(b.v, a.v)}; }
inline bool Mask16::any() const { return _mm256_movemask_epi8(v) != 0; }
template <int N>
Mask16 Mask16::shifted_in_groups() const {
  return {_mm256_alignr_epi8(v, _mm256_set1_epi16(-1), 16 - 2 * N)};
}
inline Mask16 Mask16::last_of_groups() const {
  return {_mm256_shuffle_epi8(v, _mm256_set1_epi16(0x0f0e))};
}
template <int N>
Mask16 Mask16::shifted_by_groups() const {
  static_assert(N == 1);
  return {_mm256_permute2x128_si256(v, _mm256_set1_epi16(-1), 0x02)};
}

inline U16 U16::load_first(const std::uint16_t* from, std::size_t count) {
  return load_part(from, count);
}
inline void U16::store_first(std::uint16_t* to, std::size_t count) const { store_part(*this, to, count); }
inline U16 select(Mask16 mask, U16 yes, U16 no) { return {_mm256_blendv_epi8(no.v, yes.v, mask.v)}; }
inline void U16::store_where(Mask16 mask, std::uint16_t* to, U16 old) const {
  select(mask, *this, old).store(to);
}
inline Mask16 U16::is_zero() const { return {_mm256_cmpeq_epi16(v, _mm256_setzero_si256())}; }
template <int N>
U16 U16::shifted_by_groups() const {
  static_assert(N == 1);
  return {_mm256_permute2x128_si256(v, v, 0x08)};
}
inline U16 U16::odd_lanes(U16 a, U16 b) {
  const __m256i packed = _mm256_packus_epi32(_mm256_srli_epi32(a.v, 16), _mm256_srli_epi32(b.v, 16));
  return {_mm256_permute4x64_epi64(packed, 0xd8)};
}
inline U16 U16::odd_doubled() const {
  return {_mm256_shuffle_epi8(v, _mm256_broadcastsi128_si256(_mm_setr_epi8(2, 3, 2, 3, 6, 7, 6, 7, 10, 11,
                                                                           10, 11, 14, 15, 14, 15)))};
}
/// The low bytes of the entries, then their high bytes.
inline U16 U16::load_table(const std::uint16_t* entries) {
  const __m128i table = _mm_loadu_si128(reinterpret_cast<const __m128i*>(entries));
  return {_mm256_broadcastsi128_si256(
      _mm_shuffle_epi8(table, _mm_setr_epi8(0, 2, 4, 6, 8, 10, 12, 14, 1, 3, 5, 7, 9, 11, 13, 15)))};
}
inline U16 U16::lookup(U16 table, U16 index) {
  const __m256i doubled = _mm256_shuffle_epi8(
      index.v,
      _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 0, 2, 2, 4, 4, 6, 6, 8, 8, 10, 10, 12, 12, 14, 14)));
  return {_mm256_shuffle_epi8(table.v, _mm256_or_si256(doubled, _mm256_set1_epi16(0x0800)))};
}
inline U16 U16::load_groups(const std::uint16_t* from, const std::size_t (&offset)[groups]) {
  const auto piece = [&](std::size_t group) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + offset[group]));
  };
  return {_mm256_inserti128_si256(_mm256_castsi128_si256(piece(0)), piece(1), 1)};
}
inline void U16::store_groups(std::uint16_t* to, const std::size_t (&offset)[groups]) const {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(to + offset[0]), _mm256_castsi256_si128(v));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(to + offset[1]), _mm256_extracti128_si256(v, 1));
}

inline U16 keep(Mask16 mask, U16 a) { return {_mm256_and_si256(mask.v, a.v)}; }
inline U16 max_where(Mask16 mask, U16 a, U16 b) { return max(a, keep(mask, b)); }
inline U16 increment_where(Mask16 mask, U16 value) { return {_mm256_sub_epi16(value.v, mask.v)}; }
inline U16 interleave_low(U16 a, U16 b) {
  return {
      _mm256_permute2x128_si256(_mm256_unpacklo_epi16(a.v, b.v), _mm256_unpackhi_epi16(a.v, b.v), 0x20)};
}
inline U16 interleave_high(U16 a, U16 b) {
  return {
      _mm256_permute2x128_si256(_mm256_unpacklo_epi16(a.v, b.v), _mm256_unpackhi_epi16(a.v, b.v), 0x31)};
}

inline Mask16 equal(U16 a, U16 b) { return {_mm256_cmpeq_epi16(a.v, b.v)}; }
inline Mask16 differ(U16 a, U16 b) { return ~equal(a, b); }
inline Mask16 at_most(U16 a, U16 b) { return equal(min(a, b), a); }
inline Mask16 counts_below(U16 a, U16 b) { return {_mm256_cmpgt_epi16(b.v, a.v)}; }

inline std::uint32_t bits_of(const Mask16 (&masks)[2]) {
  const __m256i bytes = _mm256_permute4x64_epi64(_mm256_packs_epi16(masks[0].v, masks[1].v), 0xd8);
  return static_cast<std::uint32_t>(_mm256_movemask_epi8(bytes));
}
inline std::uint64_t bits_of(const Mask16 (&masks)[4]) {
  return bits_of({masks[0], masks[1]}) | std::uint64_t{bits_of({masks[2], masks[3]})} << 32;
}
/// The positions of the set bits of every byte, ascending.
struct BytePositions {
  std::uint8_t of[256][8] = {};

  constexpr BytePositions() {
    for (unsigned byte = 0; byte < 256; ++byte) {
      unsigned listed = 0;
      for (unsigned bit = 0; bit < 8; ++bit) {
        if ((byte >> bit & 1u) != 0) of[byte][listed++] = static_cast<std::uint8_t>(bit);
      }
    }
  }
};
inline constexpr BytePositions byte_positions;

inline std::size_t write_positions(std::uint64_t bits, std::uint16_t base, std::uint16_t* to) {
  const auto count = static_cast<std::size_t>(__builtin_popcountll(bits));
  if (count <= 4) {
    std::uint64_t four = base * std::uint64_t{0x0001000100010001};
    for (unsigned i = 0; i < 64; i += 16) {
      four += _tzcnt_u64(bits) << i;
      bits &= bits - 1;
    }
    std::memcpy(to, &four, sizeof four);
    return count;
  }
  __m128i start = _mm_set1_epi16(static_cast<short>(base));
  for (int i = 0; i < 8; ++i, bits >>= 8) {
    const __m128i found =
        _mm_loadl_epi64(reinterpret_cast<const __m128i*>(byte_positions.of[bits & 0xff]));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_add_epi16(_mm_cvtepu8_epi16(found), start));
    to += __builtin_popcountll(bits & 0xff);
    start = _mm_add_epi16(start, _mm_set1_epi16(8));
  }
  return count;
}
inline void fill_first(U16 value, std::uint16_t* to, std::size_t count) {
  fill_by_fours(static_cast<std::uint64_t>(_mm256_extract_epi64(value.v, 0)), to, count);
}

inline Mask64 operator&(Mask64 a, Mask64 b) { return {_mm256_and_pd(a.v, b.v)}; }
inline Mask64 without(Mask64 a, Mask64 b) { return {_mm256_andnot_pd(b.v, a.v)}; }
inline F64 F64::counting_from(double start) {
  return {_mm256_add_pd(_mm256_set1_pd(start), _mm256_setr_pd(0, 1, 2, 3))};
}
inline void F64::store_truncated(Mask64 mask, std::uint16_t* to) const {
  const __m128i whole = _mm256_cvttpd_epi32(_mm256_and_pd(mask.v, v));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(to), _mm_packus_epi32(whole, whole));
}
inline F64 abs(F64 a) { return {_mm256_andnot_pd(_mm256_set1_pd(-0.0), a.v)}; }
inline F32 abs(F32 a) { return {_mm256_andnot_ps(_mm256_set1_ps(-0.0f), a.v)}; }

/// The lower four pixels of each group and the upper four.
struct PixelHalves {
  U16 pixels;
  PixelF32 first, second;

  // Unpacking beside the upper half of the bias makes the integer the low bits of a float.
  explicit PixelHalves(U16 values)
      : pixels(values),
        first{_mm256_castsi256_ps(_mm256_unpacklo_epi16(values.v, _mm256_set1_epi16(0x4b00)))},
        second{_mm256_castsi256_ps(_mm256_unpackhi_epi16(values.v, _mm256_set1_epi16(0x4b00)))} {}
};
inline U16 truncated_where(Mask32 in_first, F32 first, Mask32 in_second, F32 second,
                           const PixelHalves& otherwise) {
  const Mask16 mask = {
      _mm256_packs_epi32(_mm256_castps_si256(in_first.v), _mm256_castps_si256(in_second.v))};
  return select(mask, {_mm256_packus_epi32(_mm256_cvttps_epi32(first.v), _mm256_cvttps_epi32(second.v))},
                otherwise.pixels);
}

template <bool kWholeOffset>
class QuotientOf : public BiasedQuotient<kWholeOffset> {
 public:
  using BiasedQuotient<kWholeOffset>::BiasedQuotient;

  U16 operator()(U16 k, Mask16 mask) const {
    const PixelHalves halves(k);
    return keep(mask, {_mm256_packus_epi32(divide(halves.first), divide(halves.second))});
  }

 private:
  __m256i divide(PixelF32 k) const {
    return _mm256_cvttps_epi32(_mm256_div_ps(this->numerator_, this->divisor(k)));
  }
};

class Pixels {
 public:
  explicit Pixels(U16 pixels) : value(pixels) {}
  Pixels with(U16 pixels) const { return Pixels(pixels); }
  Mask16 valid() const { return {_mm256_cmpgt_epi16(value.v, U16::zero().v)}; }

  friend Mask16 close(const Pixels& a, const Pixels& b, U16 bound) {
    const __m256i near = _mm256_cmpgt_epi16(bound.v, _mm256_abs_epi16((b.value - a.value).v));
    const __m256i both_valid = _mm256_cmpgt_epi16(_mm256_min_epi16(a.value.v, b.value.v), U16::zero().v);
    return {_mm256_and_si256(near, both_valid)};
  }

  U16 value;
};

/// The mean of a and b (up to 32767), ties to even, where flagged; b elsewhere.
inline U16 mean_to_even_where(Mask16 mask, U16 a, U16 b) {
  const __m256i up = _mm256_avg_epu16(a.v, b.v);
  // One too high when the sum is odd and the mean, rounded up, is too: up & (a - b) & 1.
  const __m256i odd = _mm256_and_si256(_mm256_and_si256(up, (b - a).v), _mm256_set1_epi16(1));
  return select(mask, {_mm256_sub_epi16(up, odd)}, b);
}
/// a + b where flagged, otherwise `otherwise`.
inline U16 add_where(Mask16 mask, U16 otherwise, U16 a, U16 b) { return select(mask, a + b, otherwise); }
/// a and b (0 up to 65535), rounded; ties to even.
inline U16 rounded(F32 a, F32 b) {
  return {_mm256_packus_epi32(_mm256_cvtps_epi32(a.v), _mm256_cvtps_epi32(b.v))};
}

template <int N>
struct Picker {
  static constexpr std::size_t lanes = 8;
  static constexpr std::size_t reach = N * lanes;

  __m128i bytes[N];  ///< which bytes each eight pixels give; at least 128: none

  /// @param positions  `lanes` of them, below `reach`
  static Picker of(const std::uint16_t* positions) {
    const __m128i all =
        _mm_add_epi16(_mm_mullo_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(positions)),
                                      _mm_set1_epi16(0x0202)),
                      _mm_set1_epi16(0x0100));
    Picker picker;
    for (int i = 0; i < N; ++i) {
      const __m128i here = _mm_sub_epi8(all, _mm_set1_epi8(static_cast<char>(16 * i)));
      picker.bytes[i] = _mm_adds_epu8(here, _mm_set1_epi8(0x70));
    }
    return picker;
  }
  /// Writes `lanes` pixels.
  void pick(const std::uint16_t* from, std::uint16_t* to) const {
    __m128i picked = _mm_setzero_si128();
    for (std::size_t i = 0; i < N; ++i) {
      const __m128i part = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + i * lanes));
      picked = _mm_or_si128(picked, _mm_shuffle_epi8(part, bytes[i]));
    }
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), picked);
  }
};

}  // namespace filterprocessor::avx2

#endif
