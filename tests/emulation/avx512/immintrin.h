/// Stands in front of the compiler's <immintrin.h> where the avx512 level is compiled for processors with
/// AVX2 only: SIMDe computes what the kernels ask for, and what its release 0.7.4 lacks follows below, lane
/// by lane.
#ifndef FILTERPROCESSOR_TESTS_EMULATION_AVX512_IMMINTRIN_H
#define FILTERPROCESSOR_TESTS_EMULATION_AVX512_IMMINTRIN_H

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include_next <immintrin.h>
#include <limits>
#include <type_traits>

#define SIMDE_ENABLE_NATIVE_ALIASES
#include <simde/x86/avx512.h>

namespace filterprocessor::emulation {

template <typename T, std::size_t Count>
struct Lanes {
  static constexpr std::size_t count = Count;
  T at[Count];
};

template <typename T, typename Vector>
auto lanes(Vector v) {
  return std::bit_cast<Lanes<T, sizeof v / sizeof(T)>>(v);
}

/// The vector whose lane i is lane(i).
template <typename Vector, typename T, typename Lane>
Vector vector_of(Lane lane) {
  Lanes<T, sizeof(Vector) / sizeof(T)> result;
  for (std::size_t i = 0; i < result.count; ++i) result.at[i] = static_cast<T>(lane(i));
  return std::bit_cast<Vector>(result);
}

inline bool has(std::uint64_t mask, std::size_t lane) { return (mask >> lane & 1) != 0; }

/// The mask whose bit i is test(a's lane i, b's lane i).
template <typename Mask, typename T, typename Test>
Mask mask_of(__m512i a, __m512i b, Test test) {
  static_assert(sizeof(Mask) * sizeof(T) * 8 == sizeof a);
  const auto x = lanes<T>(a);
  const auto y = lanes<T>(b);
  Mask mask = 0;
  for (std::size_t i = 0; i < x.count; ++i) {
    if (test(x.at[i], y.at[i])) mask |= static_cast<Mask>(Mask{1} << i);
  }
  return mask;
}

inline __mmask32 cmpeq_epi16_mask(__m512i a, __m512i b) {
  return mask_of<__mmask32, std::int16_t>(a, b, [](auto x, auto y) { return x == y; });
}
inline __mmask32 cmpneq_epi16_mask(__m512i a, __m512i b) {
  return mask_of<__mmask32, std::int16_t>(a, b, [](auto x, auto y) { return x != y; });
}
inline __mmask32 cmpgt_epi16_mask(__m512i a, __m512i b) {
  return mask_of<__mmask32, std::int16_t>(a, b, [](auto x, auto y) { return x > y; });
}
inline __mmask32 cmplt_epi16_mask(__m512i a, __m512i b) {
  return mask_of<__mmask32, std::int16_t>(a, b, [](auto x, auto y) { return x < y; });
}
inline __mmask32 mask_cmplt_epu16_mask(__mmask32 mask, __m512i a, __m512i b) {
  return mask & mask_of<__mmask32, std::uint16_t>(a, b, [](auto x, auto y) { return x < y; });
}
inline __mmask8 cmplt_epu64_mask(__m512i a, __m512i b) {
  return mask_of<__mmask8, std::uint64_t>(a, b, [](auto x, auto y) { return x < y; });
}
inline __mmask32 testn_epi16_mask(__m512i a, __m512i b) {
  return mask_of<__mmask32, std::uint16_t>(a, b, [](auto x, auto y) { return (x & y) == 0; });
}

/// Masked memory operations touch the flagged lanes alone.
template <typename T>
__m512i load_where(std::uint64_t mask, const void* from) {
  const auto* values = static_cast<const T*>(from);
  return vector_of<__m512i, T>([=](std::size_t i) { return has(mask, i) ? values[i] : T{0}; });
}
template <typename T>
void store_where(void* to, std::uint64_t mask, __m512i v) {
  const auto x = lanes<T>(v);
  for (std::size_t i = 0; i < x.count; ++i) {
    if (has(mask, i)) static_cast<T*>(to)[i] = x.at[i];
  }
}

inline __m512i mask_sub_epi16(__m512i otherwise, __mmask32 mask, __m512i a, __m512i b) {
  const auto x = lanes<std::uint16_t>(a);
  const auto y = lanes<std::uint16_t>(b);
  const auto z = lanes<std::uint16_t>(otherwise);
  return vector_of<__m512i, std::uint16_t>(
      [&](std::size_t i) { return has(mask, i) ? x.at[i] - y.at[i] : z.at[i]; });
}

inline __m512i cvtepu8_epi16(__m256i a) {
  const auto x = lanes<std::uint8_t>(a);
  return vector_of<__m512i, std::uint16_t>([&](std::size_t i) { return x.at[i]; });
}
inline __m128i cvtepi32_epi16(__m256i a) {
  const auto x = lanes<std::uint32_t>(a);
  return vector_of<__m128i, std::uint16_t>([&](std::size_t i) { return x.at[i] & 0xffff; });
}
inline __m512i maskz_compress_epi8(__mmask64 mask, __m512i a) {
  const auto x = lanes<std::uint8_t>(a);
  Lanes<std::uint8_t, 64> result = {};
  std::size_t next = 0;
  for (std::size_t i = 0; i < x.count; ++i) {
    if (has(mask, i)) result.at[next++] = x.at[i];
  }
  return std::bit_cast<__m512i>(result);
}

/// The 64-bit words of b, then those of a, from word `first` on.
inline __m512i alignr_epi64(__m512i a, __m512i b, int first) {
  const auto x = lanes<std::uint64_t>(a);
  const auto y = lanes<std::uint64_t>(b);
  return vector_of<__m512i, std::uint64_t>([&](std::size_t i) {
    const std::size_t word = i + static_cast<std::size_t>(first);
    return word < 8 ? y.at[word] : x.at[word - 8];
  });
}
/// Every 16 bytes moved up by `bytes`.
inline __m512i bslli_epi128(__m512i a, int bytes) {
  const auto x = lanes<std::uint8_t>(a);
  const auto by = static_cast<std::size_t>(bytes);
  return vector_of<__m512i, std::uint8_t>([&](std::size_t i) { return i % 16 < by ? 0 : x.at[i - by]; });
}
inline __m128i extracti64x2_epi64(__m512i a, int part) {
  const auto x = lanes<std::uint64_t>(a);
  const auto first = 2 * static_cast<std::size_t>(part);
  return vector_of<__m128i, std::uint64_t>([&](std::size_t i) { return x.at[first + i]; });
}
/// The low halves of b:a, each shifted right by `count`.
inline __m512i shrdi_epi32(__m512i a, __m512i b, int count) {
  const auto x = lanes<std::uint32_t>(a);
  const auto y = lanes<std::uint32_t>(b);
  return vector_of<__m512i, std::uint32_t>(
      [&](std::size_t i) { return (std::uint64_t{y.at[i]} << 32 | x.at[i]) >> count & 0xffffffff; });
}

/// Truncated; what has no place becomes the smallest number.
inline __m256i maskz_cvttpd_epi32(__mmask8 mask, __m512d a) {
  const auto x = lanes<double>(a);
  return vector_of<__m256i, std::int32_t>([&](std::size_t i) {
    if (!has(mask, i)) return 0;
    const bool fits = x.at[i] > -2147483649.0 && x.at[i] < 2147483648.0;
    return fits ? static_cast<std::int32_t>(x.at[i]) : std::numeric_limits<std::int32_t>::min();
  });
}
/// a + b rounded towards 0. Both are exact in 53 bits.
inline float sum_truncated(double a, double b) {
  double sum = a + b;
  // What the addition rounded away, exactly.
  const double part = sum - a;
  const double rest = (a - (sum - part)) + (b - part);
  if ((sum > 0 && rest < 0) || (sum < 0 && rest > 0)) sum = std::nextafter(sum, 0.0);
  const auto result = static_cast<float>(sum);
  return std::fabs(double{result}) > std::fabs(sum) ? std::nextafter(result, 0.0f) : result;
}
/// The one rounding mode that is asked for.
constexpr int kTowardsZero = _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC;
template <int Rounding>
__m512 fmadd_round_ps(__m512 a, __m512 b, __m512 c) {
  static_assert(Rounding == kTowardsZero);
  const auto x = lanes<float>(a);
  const auto y = lanes<float>(b);
  const auto z = lanes<float>(c);
  return vector_of<__m512, float>(
      [&](std::size_t i) { return sum_truncated(double{x.at[i]} * y.at[i], z.at[i]); });
}
template <int Rounding>
__m512 mask_add_round_ps(__m512 otherwise, __mmask16 mask, __m512 a, __m512 b) {
  static_assert(Rounding == kTowardsZero);
  const auto x = lanes<float>(a);
  const auto y = lanes<float>(b);
  const auto z = lanes<float>(otherwise);
  return vector_of<__m512, float>(
      [&](std::size_t i) { return has(mask, i) ? sum_truncated(x.at[i], y.at[i]) : z.at[i]; });
}
/// 1 / a to 14 bits and no more: processors differ in the further ones.
inline __m512 rcp14_ps(__m512 a) {
  const auto x = lanes<float>(a);
  return vector_of<__m512, float>([&](std::size_t i) {
    return std::bit_cast<float>(std::bit_cast<std::uint32_t>(1.0f / x.at[i]) & ~0x1ffu);
  });
}

}  // namespace filterprocessor::emulation

// Some compilers have macros of these names, for operands that must be constants.
#undef _mm512_alignr_epi64
#undef _mm512_bslli_epi128
#undef _mm512_cmpeq_epi16_mask
#undef _mm512_cmpgt_epi16_mask
#undef _mm512_cmplt_epi16_mask
#undef _mm512_cmplt_epu64_mask
#undef _mm512_cmpneq_epi16_mask
#undef _mm512_extracti64x2_epi64
#undef _mm512_fmadd_round_ps
#undef _mm512_mask_add_round_ps
#undef _mm512_mask_cmplt_epu16_mask
#undef _mm512_shrdi_epi32
#define _mm256_cvtepi32_epi16 filterprocessor::emulation::cvtepi32_epi16
#define _mm512_alignr_epi64 filterprocessor::emulation::alignr_epi64
#define _mm512_bslli_epi128 filterprocessor::emulation::bslli_epi128
#define _mm512_cmpeq_epi16_mask filterprocessor::emulation::cmpeq_epi16_mask
#define _mm512_cmpgt_epi16_mask filterprocessor::emulation::cmpgt_epi16_mask
#define _mm512_cmplt_epi16_mask filterprocessor::emulation::cmplt_epi16_mask
#define _mm512_cmplt_epu64_mask filterprocessor::emulation::cmplt_epu64_mask
#define _mm512_cmpneq_epi16_mask filterprocessor::emulation::cmpneq_epi16_mask
#define _mm512_cvtepu8_epi16 filterprocessor::emulation::cvtepu8_epi16
#define _mm512_extracti64x2_epi64 filterprocessor::emulation::extracti64x2_epi64
#define _mm512_fmadd_round_ps(a, b, c, rounding) \
  filterprocessor::emulation::fmadd_round_ps<rounding>(a, b, c)
#define _mm512_mask_add_round_ps(src, mask, a, b, rounding) \
  filterprocessor::emulation::mask_add_round_ps<rounding>(src, mask, a, b)
#define _mm512_mask_cmplt_epu16_mask filterprocessor::emulation::mask_cmplt_epu16_mask
#define _mm512_mask_storeu_epi16 filterprocessor::emulation::store_where<std::uint16_t>
#define _mm512_mask_storeu_epi64 filterprocessor::emulation::store_where<std::uint64_t>
#define _mm512_mask_sub_epi16 filterprocessor::emulation::mask_sub_epi16
#define _mm512_maskz_compress_epi8 filterprocessor::emulation::maskz_compress_epi8
#define _mm512_maskz_cvttpd_epi32 filterprocessor::emulation::maskz_cvttpd_epi32
#define _mm512_maskz_loadu_epi16 filterprocessor::emulation::load_where<std::uint16_t>
#define _mm512_maskz_loadu_epi64 filterprocessor::emulation::load_where<std::uint64_t>
#define _mm512_maskz_sub_epi16(mask, a, b) \
  filterprocessor::emulation::mask_sub_epi16(_mm512_setzero_si512(), mask, a, b)
#define _mm512_rcp14_ps filterprocessor::emulation::rcp14_ps
#define _mm512_shrdi_epi32 filterprocessor::emulation::shrdi_epi32
#define _mm512_testn_epi16_mask filterprocessor::emulation::testn_epi16_mask

#endif
