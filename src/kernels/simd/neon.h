#ifndef FILTERPROCESSOR_KERNELS_SIMD_NEON_H
#define FILTERPROCESSOR_KERNELS_SIMD_NEON_H

#include <arm_neon.h>
#include <cstddef>

namespace filterprocessor::neon {
struct Registers {
  using U16 = uint16x8_t;
  using Mask16 = uint16x8_t;
  using F64 = float64x2_t;
  using Mask64 = uint64x2_t;
  using F32 = float32x4_t;
  using Mask32 = uint32x4_t;
  static constexpr std::size_t table_entries = 8;
};
}  // namespace filterprocessor::neon

#include "kernels/simd/partial.h"
namespace filterprocessor::neon {

inline Mask16 Mask16::first(std::size_t count) {
  static constexpr std::uint16_t index[8] = {0, 1, 2, 3, 4, 5, 6, 7};
  return {vcltq_u16(vld1q_u16(index), vdupq_n_u16(static_cast<std::uint16_t>(count)))};
}
inline Mask16 Mask16::group_starts() { return {vsetq_lane_u16(0xffff, vdupq_n_u16(0), 0)}; }
inline Mask16 operator&(Mask16 a, Mask16 b) { return {vandq_u16(a.v, b.v)}; }
inline Mask16 operator|(Mask16 a, Mask16 b) { return {vorrq_u16(a.v, b.v)}; }
inline Mask16 operator~(Mask16 a) { return {vmvnq_u16(a.v)}; }
inline Mask16 without(Mask16 a, Mask16 b) { return {vbicq_u16(a.v, b.v)}; }
inline bool Mask16::any() const { return vmaxvq_u16(v) != 0; }
template <int N>
Mask16 Mask16::shifted_in_groups() const {
  return {vextq_u16(vdupq_n_u16(0xffff), v, 8 - N)};
}
inline Mask16 Mask16::last_of_groups() const { return {vdupq_laneq_u16(v, 7)}; }
template <int N>
Mask16 Mask16::shifted_by_groups() const {
  return {vdupq_n_u16(0xffff)};
}

inline U16 U16::zero() { return {vdupq_n_u16(0)}; }
inline U16 U16::splat(std::uint16_t value) { return {vdupq_n_u16(value)}; }
inline U16 U16::load(const std::uint16_t* from) { return {vld1q_u16(from)}; }
inline void U16::store(std::uint16_t* to) const { vst1q_u16(to, v); }
inline U16 U16::load_first(const std::uint16_t* from, std::size_t count) {
  return load_part(from, count);
}
inline void U16::store_first(std::uint16_t* to, std::size_t count) const { store_part(*this, to, count); }
inline U16 select(Mask16 mask, U16 yes, U16 no) { return {vbslq_u16(mask.v, yes.v, no.v)}; }
inline void U16::store_where(Mask16 mask, std::uint16_t* to, U16 old) const {
  select(mask, *this, old).store(to);
}
inline Mask16 U16::is_zero() const { return {vceqzq_u16(v)}; }
template <int N>
U16 U16::shifted_in_groups() const {
  return {vextq_u16(vdupq_n_u16(0), v, 8 - N)};
}
inline U16 U16::last_of_groups() const { return {vdupq_laneq_u16(v, 7)}; }
template <int N>
U16 U16::shifted_by_groups() const {
  return {vdupq_n_u16(0)};
}
inline U16 U16::odd_lanes(U16 a, U16 b) { return {vuzp2q_u16(a.v, b.v)}; }
inline U16 U16::odd_doubled() const { return {vtrn2q_u16(v, v)}; }
inline U16 U16::load_table(const std::uint16_t* entries) { return load(entries); }
inline U16 U16::lookup(U16 table, U16 index) {
  const uint16x8_t bytes = vmlaq_n_u16(vdupq_n_u16(0x0100), index.v, 0x0202);
  return {vreinterpretq_u16_u8(vqtbl1q_u8(vreinterpretq_u8_u16(table.v), vreinterpretq_u8_u16(bytes)))};
}
inline U16 U16::load_groups(const std::uint16_t* from, const std::size_t (&offset)[groups]) {
  return load(from + offset[0]);
}
inline void U16::store_groups(std::uint16_t* to, const std::size_t (&offset)[groups]) const {
  store(to + offset[0]);
}

inline U16 operator&(U16 a, U16 b) { return {vandq_u16(a.v, b.v)}; }
inline U16 max(U16 a, U16 b) { return {vmaxq_u16(a.v, b.v)}; }
inline U16 max_where(Mask16 mask, U16 a, U16 b) { return {vmaxq_u16(a.v, vandq_u16(mask.v, b.v))}; }

inline U16 interleave_low(U16 a, U16 b) { return {vzip1q_u16(a.v, b.v)}; }
inline U16 interleave_high(U16 a, U16 b) { return {vzip2q_u16(a.v, b.v)}; }

inline U16 operator|(U16 a, U16 b) { return {vorrq_u16(a.v, b.v)}; }
inline U16 operator+(U16 a, U16 b) { return {vaddq_u16(a.v, b.v)}; }
inline U16 operator-(U16 a, U16 b) { return {vsubq_u16(a.v, b.v)}; }
inline Mask16 at_most(U16 a, U16 b) { return {vcleq_u16(a.v, b.v)}; }
inline U16 keep(Mask16 mask, U16 a) { return {vandq_u16(mask.v, a.v)}; }

template <int N>
U16 shifted_left(U16 a) {
  return {vshlq_n_u16(a.v, N)};
}
template <int N>
U16 shifted_right(U16 a) {
  return {vshrq_n_u16(a.v, N)};
}
inline U16 sign_extended_14(U16 a) {
  return {vreinterpretq_u16_s16(vshrq_n_s16(vreinterpretq_s16_u16(vshlq_n_u16(a.v, 2)), 2))};
}

/// A whole offset costs no less here.
template <bool kWholeOffset>
class QuotientOf {
 public:
  static bool takes(float) { return true; }

  QuotientOf(float numerator, float offset)
      : numerator_(vdupq_n_f32(numerator)), offset_(vdupq_n_f32(offset)) {}

  U16 operator()(U16 k, Mask16 mask) const {
    return keep(mask, {vmovn_high_u32(vmovn_u32(divide(vmovl_u16(vget_low_u16(k.v)))),
                                      divide(vmovl_high_u16(k.v)))});
  }

 private:
  uint32x4_t divide(uint32x4_t k) const {
    return vcvtq_u32_f32(vdivq_f32(numerator_, vaddq_f32(vcvtq_f32_u32(k), offset_)));
  }

  float32x4_t numerator_;
  float32x4_t offset_;
};

inline Mask64 operator&(Mask64 a, Mask64 b) { return {vandq_u64(a.v, b.v)}; }
inline Mask64 without(Mask64 a, Mask64 b) { return {vbicq_u64(a.v, b.v)}; }
inline F64 F64::splat(double value) { return {vdupq_n_f64(value)}; }
inline F64 F64::counting_from(double start) { return {vsetq_lane_f64(start + 1, vdupq_n_f64(start), 1)}; }
inline void F64::store_truncated(Mask64 mask, std::uint16_t* to) const {
  const uint64x2_t whole = vandq_u64(mask.v, vcvtq_u64_f64(v));
  to[0] = static_cast<std::uint16_t>(vgetq_lane_u64(whole, 0));
  to[1] = static_cast<std::uint16_t>(vgetq_lane_u64(whole, 1));
}
inline F64 operator+(F64 a, F64 b) { return {vaddq_f64(a.v, b.v)}; }
inline F64 operator-(F64 a, F64 b) { return {vsubq_f64(a.v, b.v)}; }
inline F64 operator*(F64 a, F64 b) { return {vmulq_f64(a.v, b.v)}; }
inline F64 operator/(F64 a, F64 b) { return {vdivq_f64(a.v, b.v)}; }
inline F64 fused_multiply_add(F64 a, F64 b, F64 c) { return {vfmaq_f64(c.v, a.v, b.v)}; }
inline F64 abs(F64 a) { return {vabsq_f64(a.v)}; }
inline Mask64 operator<(F64 a, F64 b) { return {vcltq_f64(a.v, b.v)}; }
inline Mask64 operator>(F64 a, F64 b) { return {vcgtq_f64(a.v, b.v)}; }
inline Mask64 operator<=(F64 a, F64 b) { return {vcleq_f64(a.v, b.v)}; }
inline Mask64 operator>=(F64 a, F64 b) { return {vcgeq_f64(a.v, b.v)}; }

inline U16 operator>>(U16 a, unsigned count) {
  return {vshlq_u16(a.v, vdupq_n_s16(static_cast<std::int16_t>(-static_cast<int>(count))))};
}
inline U16 min(U16 a, U16 b) { return {vminq_u16(a.v, b.v)}; }
inline U16 add_saturated(U16 a, U16 b) { return {vqaddq_u16(a.v, b.v)}; }
inline U16 subtract_saturated(U16 a, U16 b) { return {vqsubq_u16(a.v, b.v)}; }
inline Mask16 equal(U16 a, U16 b) { return {vceqq_u16(a.v, b.v)}; }
inline Mask16 differ(U16 a, U16 b) { return ~equal(a, b); }

/// The flags of 32 lanes as weights that add up to bytes of bits.
inline uint8x16_t pairs_of_bits(const Mask16 (&masks)[4]) {
  static constexpr std::uint8_t weights[16] = {1, 2, 4, 8, 16, 32, 64, 128, 1, 2, 4, 8, 16, 32, 64, 128};
  const uint8x16_t weight = vld1q_u8(weights);
  const auto weighted = [&](Mask16 a, Mask16 b) {
    return vandq_u8(vuzp1q_u8(vreinterpretq_u8_u16(a.v), vreinterpretq_u8_u16(b.v)), weight);
  };
  return vpaddq_u8(weighted(masks[0], masks[1]), weighted(masks[2], masks[3]));
}
inline std::uint32_t bits_of(const Mask16 (&masks)[4]) {
  const uint8x16_t pairs = pairs_of_bits(masks);
  const uint8x16_t sums = vpaddq_u8(pairs, pairs);
  return vgetq_lane_u32(vreinterpretq_u32_u8(vpaddq_u8(sums, sums)), 0);
}
inline std::uint64_t bits_of(const Mask16 (&masks)[8]) {
  const uint8x16_t sums = vpaddq_u8(pairs_of_bits({masks[0], masks[1], masks[2], masks[3]}),
                                    pairs_of_bits({masks[4], masks[5], masks[6], masks[7]}));
  return vgetq_lane_u64(vreinterpretq_u64_u8(vpaddq_u8(sums, sums)), 0);
}

inline std::size_t write_positions(std::uint64_t bits, std::uint16_t base, std::uint16_t* to) {
  const auto count = static_cast<std::size_t>(__builtin_popcountll(bits));
  std::size_t done = 0;
  do {
    for (std::size_t i = 0; i < 4; ++i) {
      to[done + i] = static_cast<std::uint16_t>(base + (bits != 0 ? __builtin_ctzll(bits) : 64));
      bits &= bits - 1;
    }
    done += 4;
  } while (done < count);
  return count;
}
inline void fill_first(U16 value, std::uint16_t* to, std::size_t count) {
  fill_by_fours(static_cast<std::uint64_t>(vgetq_lane_u64(vreinterpretq_u64_u16(value.v), 0)), to, count);
}

struct Factor {
  static constexpr float kLargest = 1e30f;

  F32 factor;

  explicit Factor(float value) : factor{vdupq_n_f32(value)} {}
};

inline F32 operator-(PixelF32 a, PixelF32 b) { return {vsubq_f32(a.v, b.v)}; }
inline PixelF32 min(PixelF32 a, PixelF32 b) { return {vminq_f32(a.v, b.v)}; }
inline F32 operator*(PixelF32 a, Factor b) { return {vmulq_f32(a.v, b.factor.v)}; }
inline F32 add_product(F32 sum, PixelF32 a, Factor b) { return {vfmaq_f32(sum.v, a.v, b.factor.v)}; }
inline F32 abs(F32 a) { return {vabsq_f32(a.v)}; }
inline Mask32 operator<(F32 a, F32 b) { return {vcltq_f32(a.v, b.v)}; }

/// The lower four pixels and the upper four.
struct PixelHalves {
  U16 pixels;
  PixelF32 first, second;

  explicit PixelHalves(U16 values)
      : pixels(values),
        first{vcvtq_f32_u32(vmovl_u16(vget_low_u16(values.v)))},
        second{vcvtq_f32_u32(vmovl_high_u16(values.v))} {}
};
inline U16 truncated_where(Mask32 in_first, F32 first, Mask32 in_second, F32 second,
                           const PixelHalves& otherwise) {
  const Mask16 mask = {vmovn_high_u32(vmovn_u32(in_first.v), in_second.v)};
  return select(mask, U16{vmovn_high_u32(vmovn_u32(vcvtq_u32_f32(first.v)), vcvtq_u32_f32(second.v))},
                otherwise.pixels);
}

[[gnu::always_inline]] inline void transpose_groups(U16 (&rows)[8]) {
  uint32x4_t pairs[8];
  for (int i = 0; i < 8; i += 2) {
    pairs[i] = vreinterpretq_u32_u16(vtrn1q_u16(rows[i].v, rows[i + 1].v));
    pairs[i + 1] = vreinterpretq_u32_u16(vtrn2q_u16(rows[i].v, rows[i + 1].v));
  }
  uint64x2_t fours[8];
  for (int i = 0; i < 8; i += 4) {
    for (int j = 0; j < 2; ++j) {
      fours[i + j] = vreinterpretq_u64_u32(vtrn1q_u32(pairs[i + j], pairs[i + j + 2]));
      fours[i + j + 2] = vreinterpretq_u64_u32(vtrn2q_u32(pairs[i + j], pairs[i + j + 2]));
    }
  }
  for (int i = 0; i < 4; ++i) {
    rows[i].v = vreinterpretq_u16_u64(vtrn1q_u64(fours[i], fours[i + 4]));
    rows[i + 4].v = vreinterpretq_u16_u64(vtrn2q_u64(fours[i], fours[i + 4]));
  }
}

class Pixels {
 public:
  explicit Pixels(U16 pixels) : value(pixels) {}
  Pixels with(U16 pixels) const { return Pixels(pixels); }
  Mask16 valid() const { return {vtstq_u16(value.v, value.v)}; }

  friend Mask16 close(const Pixels& a, const Pixels& b, U16 bound) {
    const uint16x8_t distance = vabdq_u16(a.value.v, b.value.v);
    const uint16x8_t zero = vdupq_n_u16(0);
    const uint16x8_t nonzero = vminq_u16(vminq_u16(a.value.v, b.value.v), distance);
    return {vandq_u16(vcltq_u16(distance, bound.v), vcgtq_u16(nonzero, zero))};
  }

  U16 value;
};

/// (a + b) modulo 65536, halved, where flagged; b elsewhere.
inline U16 wrapped_mean_where(Mask16 mask, U16 a, U16 b) {
  return select(mask, U16{vshrq_n_u16(vaddq_u16(a.v, b.v), 1)}, b);
}
inline U16 increment_where(Mask16 mask, U16 value) { return {vsubq_u16(value.v, mask.v)}; }
inline Mask16 counts_below(U16 a, U16 b) { return {vcltq_u16(a.v, b.v)}; }

template <int N>
struct Picker {
  static constexpr std::size_t lanes = 8;
  static constexpr std::size_t reach = N * lanes;

  uint8x16_t bytes;

  static Picker of(const std::uint16_t* positions) {
    const uint16x8_t first = vmulq_n_u16(vld1q_u16(positions), 0x0202);
    return {vreinterpretq_u8_u16(vaddq_u16(first, vdupq_n_u16(0x0100)))};
  }
  void pick(const std::uint16_t* from, std::uint16_t* to) const {
    const auto* source = reinterpret_cast<const std::uint8_t*>(from);
    uint8x16_t picked;
    if constexpr (N == 1) picked = vqtbl1q_u8(vld1q_u8(source), bytes);
    if constexpr (N == 2) picked = vqtbl2q_u8(vld1q_u8_x2(source), bytes);
    if constexpr (N == 4) picked = vqtbl4q_u8(vld1q_u8_x4(source), bytes);
    vst1q_u16(to, vreinterpretq_u16_u8(picked));
  }
};

}  // namespace filterprocessor::neon

#endif
