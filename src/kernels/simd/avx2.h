#ifndef FILTERPROCESSOR_KERNELS_SIMD_AVX2_H
#define FILTERPROCESSOR_KERNELS_SIMD_AVX2_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <immintrin.h>

#include "kernels/simd/words.h"

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
    if (count == 0) return zero();  // `from` may be null
    alignas(32) std::uint16_t values[lanes] = {};
    std::memcpy(values, from, count * sizeof *from);
    return load(values);
  }
  void store(std::uint16_t* to) const { _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), v); }
  void store_first(std::uint16_t* to, std::size_t count) const {
    if (count == lanes) return store(to);
    if (count == 0) return;
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
  /// `table_entries` entries for lookup(): their low bytes, then their high bytes.
  static U16 load_table(const std::uint16_t* entries) {
    const __m128i table = _mm_loadu_si128(reinterpret_cast<const __m128i*>(entries));
    return {_mm256_broadcastsi128_si256(
        _mm_shuffle_epi8(table, _mm_setr_epi8(0, 2, 4, 6, 8, 10, 12, 14, 1, 3, 5, 7, 9, 11, 13, 15)))};
  }
  /// The entries of a loaded table at indices below `table_entries`.
  static U16 lookup(U16 table, U16 index) {
    const __m256i doubled = _mm256_shuffle_epi8(
        index.v,
        _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 0, 2, 2, 4, 4, 6, 6, 8, 8, 10, 10, 12, 12, 14, 14)));
    return {_mm256_shuffle_epi8(table.v, _mm256_or_si256(doubled, _mm256_set1_epi16(0x0800)))};
  }

  /// Reads eight values per group, group g at from + offset[g].
  static U16 load_groups(const std::uint16_t* from, const std::size_t (&offset)[groups]) {
    const auto piece = [&](std::size_t group) {
      return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + offset[group]));
    };
    return {_mm256_inserti128_si256(_mm256_castsi128_si256(piece(0)), piece(1), 1)};
  }
  void store_groups(std::uint16_t* to, const std::size_t (&offset)[groups]) const {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to + offset[0]), _mm256_castsi256_si128(v));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to + offset[1]), _mm256_extracti128_si256(v, 1));
  }
};

inline U16 operator&(U16 a, U16 b) { return {_mm256_and_si256(a.v, b.v)}; }
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

inline U16 operator|(U16 a, U16 b) { return {_mm256_or_si256(a.v, b.v)}; }
inline U16 operator-(U16 a, U16 b) { return {_mm256_sub_epi16(a.v, b.v)}; }
/// The flags of a that b lacks.
inline Mask16 without(Mask16 a, Mask16 b) { return {_mm256_andnot_si256(b.v, a.v)}; }
/// a <= b, unsigned.
inline Mask16 at_most(U16 a, U16 b) { return {_mm256_cmpeq_epi16(_mm256_min_epu16(a.v, b.v), a.v)}; }
/// a where flagged, 0 elsewhere.
inline U16 keep(Mask16 mask, U16 a) { return {_mm256_and_si256(mask.v, a.v)}; }

template <int N>
U16 shifted_left(U16 a) {
  return {_mm256_slli_epi16(a.v, N)};
}
template <int N>
U16 shifted_right(U16 a) {
  return {_mm256_srli_epi16(a.v, N)};
}
/// The low 14 bits of each lane as a two's-complement number.
inline U16 sign_extended_14(U16 a) { return {_mm256_srai_epi16(_mm256_slli_epi16(a.v, 2), 2)}; }

/// trunc(numerator / (k + offset)) in 32-bit float.
/// kWholeOffset: the offset is one that takes() accepts, and the sum costs an operation less.
template <bool kWholeOffset>
class QuotientOf {
 public:
  static constexpr float kBias = 8388608;

  static bool takes(float offset) { return (offset - kBias) + kBias == offset; }

  QuotientOf(float numerator, float offset)
      : numerator_(_mm256_set1_ps(numerator)),
        offset_(_mm256_set1_ps(kWholeOffset ? offset - kBias : offset)) {}

  /// The quotients of the flagged lanes, which must lie between 0 and 65535; 0 elsewhere.
  U16 operator()(U16 k, Mask16 mask) const {
    // Unpacking beside the upper half of the bias makes the integer the low bits of a float.
    const __m256i upper = _mm256_set1_epi16(0x4b00);
    const __m256i low = divide(_mm256_unpacklo_epi16(k.v, upper));
    const __m256i high = divide(_mm256_unpackhi_epi16(k.v, upper));
    return keep(mask, {_mm256_packus_epi32(low, high)});
  }

 private:
  __m256i divide(__m256i biased) const {
    __m256 divisor = _mm256_castsi256_ps(biased);
    if constexpr (!kWholeOffset) divisor = _mm256_sub_ps(divisor, _mm256_set1_ps(kBias));
    return _mm256_cvttps_epi32(_mm256_div_ps(numerator_, _mm256_add_ps(divisor, offset_)));
  }

  __m256 numerator_;
  __m256 offset_;
};

struct Mask64 {
  __m256d v;

  friend Mask64 operator&(Mask64 a, Mask64 b) { return {_mm256_and_pd(a.v, b.v)}; }
};
/// The flags of a that b lacks.
inline Mask64 without(Mask64 a, Mask64 b) { return {_mm256_andnot_pd(b.v, a.v)}; }

struct F64 {
  static constexpr std::size_t lanes = 4;

  __m256d v;

  static F64 splat(double value) { return {_mm256_set1_pd(value)}; }
  /// start, start + 1, ...
  static F64 counting_from(double start) {
    return {_mm256_add_pd(_mm256_set1_pd(start), _mm256_setr_pd(0, 1, 2, 3))};
  }
  /// Writes the flagged lanes (0 to below 65536) truncated, and 0 for the others.
  void store_truncated(Mask64 mask, std::uint16_t* to) const {
    const __m128i whole = _mm256_cvttpd_epi32(_mm256_and_pd(mask.v, v));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(to), _mm_packus_epi32(whole, whole));
  }
};

inline F64 operator+(F64 a, F64 b) { return {_mm256_add_pd(a.v, b.v)}; }
inline F64 operator-(F64 a, F64 b) { return {_mm256_sub_pd(a.v, b.v)}; }
inline F64 operator*(F64 a, F64 b) { return {_mm256_mul_pd(a.v, b.v)}; }
inline F64 operator/(F64 a, F64 b) { return {_mm256_div_pd(a.v, b.v)}; }
/// a x b + c, rounded once.
inline F64 fused_multiply_add(F64 a, F64 b, F64 c) { return {_mm256_fmadd_pd(a.v, b.v, c.v)}; }
inline F64 abs(F64 a) { return {_mm256_andnot_pd(_mm256_set1_pd(-0.0), a.v)}; }
inline Mask64 operator<(F64 a, F64 b) { return {_mm256_cmp_pd(a.v, b.v, _CMP_LT_OQ)}; }
inline Mask64 operator>(F64 a, F64 b) { return {_mm256_cmp_pd(a.v, b.v, _CMP_GT_OQ)}; }
inline Mask64 operator<=(F64 a, F64 b) { return {_mm256_cmp_pd(a.v, b.v, _CMP_LE_OQ)}; }
inline Mask64 operator>=(F64 a, F64 b) { return {_mm256_cmp_pd(a.v, b.v, _CMP_GE_OQ)}; }

inline U16 operator>>(U16 a, unsigned count) {
  return {_mm256_srl_epi16(a.v, _mm_cvtsi32_si128(static_cast<int>(count)))};
}
inline U16 min(U16 a, U16 b) { return {_mm256_min_epu16(a.v, b.v)}; }
inline U16 add_saturated(U16 a, U16 b) { return {_mm256_adds_epu16(a.v, b.v)}; }
inline U16 subtract_saturated(U16 a, U16 b) { return {_mm256_subs_epu16(a.v, b.v)}; }
inline Mask16 equal(U16 a, U16 b) { return {_mm256_cmpeq_epi16(a.v, b.v)}; }
inline Mask16 differ(U16 a, U16 b) { return ~equal(a, b); }

/// The flags of 32 lanes in order, the first in the lowest bit.
inline std::uint32_t bits_of(const Mask16 (&masks)[2]) {
  const __m256i bytes = _mm256_permute4x64_epi64(_mm256_packs_epi16(masks[0].v, masks[1].v), 0xd8);
  return static_cast<std::uint32_t>(_mm256_movemask_epi8(bytes));
}
/// The same for 64 lanes.
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

/// Writes `base` + the positions of the set bits, ascending, and up to 64 values of no meaning.
/// @return the number of set bits
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

/// Writes the first `count` lanes, 1 to all, of a vector of equal values.
inline void fill_first(U16 value, std::uint16_t* to, std::size_t count) {
  fill_by_fours(static_cast<std::uint64_t>(_mm256_extract_epi64(value.v, 0)), to, count);
}

/// Half of a vector's pixels as 32-bit floats. They carry a bias of 2^23, which turns an integer into a
/// float without a conversion and cancels in differences; it is exact, and so are the minimum and the
/// difference.
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
/// The product of pixel and factor, rounded once: the fused operation removes the exact product of the
/// bias.
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

/// Transposes the eight by eight values of every group.
[[gnu::always_inline]] inline void transpose_groups(U16 (&rows)[8]) {
  __m256i pairs[8];
  for (int i = 0; i < 8; i += 2) {
    pairs[i] = _mm256_unpacklo_epi16(rows[i].v, rows[i + 1].v);
    pairs[i + 1] = _mm256_unpackhi_epi16(rows[i].v, rows[i + 1].v);
  }
  __m256i fours[8];
  for (int i = 0; i < 8; i += 4) {
    for (int j = 0; j < 2; ++j) {
      fours[i + 2 * j] = _mm256_unpacklo_epi32(pairs[i + j], pairs[i + j + 2]);
      fours[i + 2 * j + 1] = _mm256_unpackhi_epi32(pairs[i + j], pairs[i + j + 2]);
    }
  }
  for (int i = 0; i < 4; ++i) {
    rows[2 * i].v = _mm256_unpacklo_epi64(fours[i], fours[i + 4]);
    rows[2 * i + 1].v = _mm256_unpackhi_epi64(fours[i], fours[i + 4]);
  }
}

/// Pixels that know where they are valid (1 to 32767).
class Pixels {
 public:
  explicit Pixels(U16 pixels) : value(pixels) {}
  /// Other pixels, valid in the same places.
  Pixels with(U16 pixels) const { return Pixels(pixels); }
  Mask16 valid() const { return {_mm256_cmpgt_epi16(value.v, U16::zero().v)}; }

  /// Where a and b are valid and closer than `bound`. Equal pixels may be flagged or not.
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
  return select(mask, U16{_mm256_sub_epi16(up, odd)}, b);
}
/// a + b where flagged, otherwise `otherwise`.
inline U16 add_where(Mask16 mask, U16 otherwise, U16 a, U16 b) {
  return select(mask, U16{_mm256_add_epi16(a.v, b.v)}, otherwise);
}
/// Signed a x b / 2^15, rounded; halves up.
inline U16 multiply_round(U16 a, U16 b) { return {_mm256_mulhrs_epi16(a.v, b.v)}; }
/// a and b (0 up to 65535), rounded; ties to even.
inline U16 rounded(F32 a, F32 b) {
  return {_mm256_packus_epi32(_mm256_cvtps_epi32(a.v), _mm256_cvtps_epi32(b.v))};
}
/// value + 1 where flagged.
inline U16 increment_where(Mask16 mask, U16 value) { return {_mm256_sub_epi16(value.v, mask.v)}; }
/// a < b as signed numbers.
inline Mask16 below(U16 a, U16 b) { return {_mm256_cmpgt_epi16(b.v, a.v)}; }

/// Picks pixels out of the `reach` from an address on. N is 1, 2 or 4.
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
