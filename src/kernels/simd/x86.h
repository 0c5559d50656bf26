/// What AVX2 and AVX-512 say alike, in the words MM(operation) = _mm256_operation or _mm512_operation and, for whole
/// registers, MM_WHOLE(operation) = _mm256_operation_si256 or _mm512_operation_si512.
#ifndef FILTERPROCESSOR_KERNELS_SIMD_X86_H
#define FILTERPROCESSOR_KERNELS_SIMD_X86_H

#include "kernels/simd/vocabulary.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

inline U16 U16::zero() { return {MM_WHOLE(setzero)()}; }
inline U16 U16::splat(std::uint16_t value) { return {MM(set1_epi16)(static_cast<short>(value))}; }
inline U16 U16::load(const std::uint16_t* from) {
  return {MM_WHOLE(loadu)(reinterpret_cast<const Registers::U16*>(from))};
}
inline void U16::store(std::uint16_t* to) const {
  MM_WHOLE(storeu)(reinterpret_cast<Registers::U16*>(to), v);
}
template <int N>
U16 U16::shifted_in_groups() const {
  return {MM(bslli_epi128)(v, 2 * N)};
}
inline U16 U16::last_of_groups() const { return {MM(shuffle_epi8)(v, MM(set1_epi16)(0x0f0e))}; }

inline U16 operator&(U16 a, U16 b) { return {MM_WHOLE(and)(a.v, b.v)}; }
inline U16 operator|(U16 a, U16 b) { return {MM_WHOLE(or)(a.v, b.v)}; }
inline U16 operator+(U16 a, U16 b) { return {MM(add_epi16)(a.v, b.v)}; }
inline U16 operator-(U16 a, U16 b) { return {MM(sub_epi16)(a.v, b.v)}; }
inline U16 operator>>(U16 a, unsigned count) {
  return {MM(srl_epi16)(a.v, _mm_cvtsi32_si128(static_cast<int>(count)))};
}
template <int N>
U16 shifted_left(U16 a) {
  return {MM(slli_epi16)(a.v, N)};
}
template <int N>
U16 shifted_right(U16 a) {
  return {MM(srli_epi16)(a.v, N)};
}
inline U16 add_saturated(U16 a, U16 b) { return {MM(adds_epu16)(a.v, b.v)}; }
inline U16 subtract_saturated(U16 a, U16 b) { return {MM(subs_epu16)(a.v, b.v)}; }
inline U16 min(U16 a, U16 b) { return {MM(min_epu16)(a.v, b.v)}; }
inline U16 max(U16 a, U16 b) { return {MM(max_epu16)(a.v, b.v)}; }
inline U16 sign_extended_14(U16 a) { return {MM(srai_epi16)(MM(slli_epi16)(a.v, 2), 2)}; }
/// Signed a x b / 2^15, rounded; halves up.
inline U16 multiply_round(U16 a, U16 b) { return {MM(mulhrs_epi16)(a.v, b.v)}; }

[[gnu::always_inline]] inline void transpose_groups(U16 (&rows)[8]) {
  Registers::U16 pairs[8];
  for (int i = 0; i < 8; i += 2) {
    pairs[i] = MM(unpacklo_epi16)(rows[i].v, rows[i + 1].v);
    pairs[i + 1] = MM(unpackhi_epi16)(rows[i].v, rows[i + 1].v);
  }
  Registers::U16 fours[8];
  for (int i = 0; i < 8; i += 4) {
    for (int j = 0; j < 2; ++j) {
      fours[i + 2 * j] = MM(unpacklo_epi32)(pairs[i + j], pairs[i + j + 2]);
      fours[i + 2 * j + 1] = MM(unpackhi_epi32)(pairs[i + j], pairs[i + j + 2]);
    }
  }
  for (int i = 0; i < 4; ++i) {
    rows[2 * i].v = MM(unpacklo_epi64)(fours[i], fours[i + 4]);
    rows[2 * i + 1].v = MM(unpackhi_epi64)(fours[i], fours[i + 4]);
  }
}

inline F64 F64::splat(double value) { return {MM(set1_pd)(value)}; }
inline F64 operator+(F64 a, F64 b) { return {MM(add_pd)(a.v, b.v)}; }
inline F64 operator-(F64 a, F64 b) { return {MM(sub_pd)(a.v, b.v)}; }
inline F64 operator*(F64 a, F64 b) { return {MM(mul_pd)(a.v, b.v)}; }
inline F64 operator/(F64 a, F64 b) { return {MM(div_pd)(a.v, b.v)}; }
inline F64 fused_multiply_add(F64 a, F64 b, F64 c) { return {MM(fmadd_pd)(a.v, b.v, c.v)}; }
inline Mask64 operator<(F64 a, F64 b) { return {MM_COMPARE(pd)(a.v, b.v, _CMP_LT_OQ)}; }
inline Mask64 operator>(F64 a, F64 b) { return {MM_COMPARE(pd)(a.v, b.v, _CMP_GT_OQ)}; }
inline Mask64 operator<=(F64 a, F64 b) { return {MM_COMPARE(pd)(a.v, b.v, _CMP_LE_OQ)}; }
inline Mask64 operator>=(F64 a, F64 b) { return {MM_COMPARE(pd)(a.v, b.v, _CMP_GE_OQ)}; }

// Pixels carry a bias of 2^23, which turns an integer into a float without a conversion and cancels in differences; it is
// exact, and so are the minimum and the difference.
inline F32 operator-(PixelF32 a, PixelF32 b) { return {MM(sub_ps)(a.v, b.v)}; }
inline PixelF32 min(PixelF32 a, PixelF32 b) { return {MM(min_ps)(a.v, b.v)}; }
inline F32 operator+(F32 a, F32 b) { return {MM(add_ps)(a.v, b.v)}; }
inline Mask32 operator<(F32 a, F32 b) { return {MM_COMPARE(ps)(a.v, b.v, _CMP_LT_OQ)}; }

struct Factor {
  static constexpr float kLargest = 1e30f;

  F32 factor, offset;

  explicit Factor(float value)
      : factor{MM(set1_ps)(value)}, offset{MM(set1_ps)(-PixelF32::kBias * value)} {}
};
// The fused operation removes the exact product of the bias.
inline F32 operator*(PixelF32 a, Factor b) { return {MM(fmadd_ps)(a.v, b.factor.v, b.offset.v)}; }
inline F32 add_product(F32 sum, PixelF32 a, Factor b) { return sum + a * b; }

/// The numerator and, biased, the divisor of a QuotientOf.
template <bool kWholeOffset>
class BiasedQuotient {
 public:
  static constexpr float kBias = PixelF32::kBias;

  static bool takes(float offset) { return (offset - kBias) + kBias == offset; }

  BiasedQuotient(float numerator, float offset)
      : numerator_(MM(set1_ps)(numerator)),
        offset_(MM(set1_ps)(kWholeOffset ? offset - kBias : offset)) {}

 protected:
  Registers::F32 divisor(PixelF32 k) const {
    if constexpr (!kWholeOffset) k.v = MM(sub_ps)(k.v, MM(set1_ps)(kBias));
    return MM(add_ps)(k.v, offset_);
  }

  Registers::F32 numerator_;
  Registers::F32 offset_;
};

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL

#endif
