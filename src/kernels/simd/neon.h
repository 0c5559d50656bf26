#ifndef FILTERPROCESSOR_KERNELS_SIMD_NEON_H
#define FILTERPROCESSOR_KERNELS_SIMD_NEON_H

#include <arm_neon.h>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace filterprocessor::neon {

struct Mask16 {
  uint16x8_t v;

  /// The first `count` lanes.
  static Mask16 first(std::size_t count) {
    static constexpr std::uint16_t index[8] = {0, 1, 2, 3, 4, 5, 6, 7};
    return {vcltq_u16(vld1q_u16(index), vdupq_n_u16(static_cast<std::uint16_t>(count)))};
  }
  /// The first lane of every group.
  static Mask16 group_starts() { return {vsetq_lane_u16(0xffff, vdupq_n_u16(0), 0)}; }

  friend Mask16 operator&(Mask16 a, Mask16 b) { return {vandq_u16(a.v, b.v)}; }
  friend Mask16 operator|(Mask16 a, Mask16 b) { return {vorrq_u16(a.v, b.v)}; }
  friend Mask16 operator~(Mask16 a) { return {vmvnq_u16(a.v)}; }
  bool any() const { return vmaxvq_u16(v) != 0; }

  /// Moves every group's flags up by N lanes and sets the first N.
  template <int N>
  Mask16 shifted_in_groups() const {
    return {vextq_u16(vdupq_n_u16(0xffff), v, 8 - N)};
  }
  /// Every group gets the flag of its last lane.
  Mask16 last_of_groups() const { return {vdupq_laneq_u16(v, 7)}; }
  /// Moves the groups up by N and sets the first N.
  template <int N>
  Mask16 shifted_by_groups() const {
    return {vdupq_n_u16(0xffff)};
  }
};

struct U16 {
  static constexpr std::size_t lanes = 8;
  static constexpr std::size_t groups = 1;

  uint16x8_t v;

  static U16 zero() { return {vdupq_n_u16(0)}; }
  static U16 splat(std::uint16_t value) { return {vdupq_n_u16(value)}; }
  static U16 load(const std::uint16_t* from) { return {vld1q_u16(from)}; }
  /// Reads `count` values (at most `lanes`) and sets the other lanes to 0.
  static U16 load_first(const std::uint16_t* from, std::size_t count) {
    if (count == lanes) return load(from);
    std::uint16_t values[lanes] = {};
    std::memcpy(values, from, count * sizeof *from);
    return load(values);
  }
  void store(std::uint16_t* to) const { vst1q_u16(to, v); }
  void store_first(std::uint16_t* to, std::size_t count) const {
    if (count == lanes) return store(to);
    std::uint16_t values[lanes];
    store(values);
    std::memcpy(to, values, count * sizeof *to);
  }
  /// Writes the flagged lanes. `old` is what stands there.
  void store_where(Mask16 mask, std::uint16_t* to, U16 old) const {
    U16{vbslq_u16(mask.v, v, old.v)}.store(to);
  }

  Mask16 is_zero() const { return {vceqzq_u16(v)}; }

  /// Moves every group's lanes up by N; 0 moves in.
  template <int N>
  U16 shifted_in_groups() const {
    return {vextq_u16(vdupq_n_u16(0), v, 8 - N)};
  }
  /// Every lane of a group gets the group's last value.
  U16 last_of_groups() const { return {vdupq_laneq_u16(v, 7)}; }
  /// Moves the groups up by N; 0 moves in.
  template <int N>
  U16 shifted_by_groups() const {
    return {vdupq_n_u16(0)};
  }
  /// Every lane gets the last value.
  U16 last() const { return last_of_groups(); }
  /// The odd lanes of the two vectors, those of `a` first.
  static U16 odd_lanes(U16 a, U16 b) { return {vuzp2q_u16(a.v, b.v)}; }
  /// Every odd lane twice.
  U16 odd_doubled() const { return {vtrn2q_u16(v, v)}; }
  /// Entries that lookup() takes from a table.
  static constexpr std::size_t table_entries = 8;
  /// The entries of `table`, a vector's worth, at indices below `table_entries`.
  static U16 lookup(U16 table, U16 index) {
    const uint16x8_t bytes = vmlaq_n_u16(vdupq_n_u16(0x0100), index.v, 0x0202);
    return {vreinterpretq_u16_u8(vqtbl1q_u8(vreinterpretq_u8_u16(table.v), vreinterpretq_u8_u16(bytes)))};
  }
};

inline U16 max(U16 a, U16 b) { return {vmaxq_u16(a.v, b.v)}; }
/// a or b by lane, whichever is larger where flagged; a elsewhere.
inline U16 max_where(Mask16 mask, U16 a, U16 b) { return {vmaxq_u16(a.v, vandq_u16(mask.v, b.v))}; }
inline U16 select(Mask16 mask, U16 yes, U16 no) { return {vbslq_u16(mask.v, yes.v, no.v)}; }
/// 65535 - a; 0 where a is 0.
inline U16 complement_nonzero(U16 a) { return {vmvnq_u16(vorrq_u16(a.v, a.is_zero().v))}; }

/// The lanes of a and b in turn: of their lower halves, and of their upper halves.
inline U16 interleave_low(U16 a, U16 b) { return {vzip1q_u16(a.v, b.v)}; }
inline U16 interleave_high(U16 a, U16 b) { return {vzip2q_u16(a.v, b.v)}; }

inline U16 operator-(U16 a, U16 b) { return {vsubq_u16(a.v, b.v)}; }
inline U16 operator&(U16 a, U16 b) { return {vandq_u16(a.v, b.v)}; }
inline U16 operator>>(U16 a, unsigned count) {
  return {vshlq_u16(a.v, vdupq_n_s16(static_cast<std::int16_t>(-static_cast<int>(count))))};
}
inline U16 min(U16 a, U16 b) { return {vminq_u16(a.v, b.v)}; }
inline U16 add_saturated(U16 a, U16 b) { return {vqaddq_u16(a.v, b.v)}; }
inline U16 subtract_saturated(U16 a, U16 b) { return {vqsubq_u16(a.v, b.v)}; }
inline Mask16 equal(U16 a, U16 b) { return {vceqq_u16(a.v, b.v)}; }
inline Mask16 differ(U16 a, U16 b) { return ~equal(a, b); }
inline Mask16 at_most(U16 a, U16 b) { return {vcleq_u16(a.v, b.v)}; }

/// The flags of 64 lanes in order, the first in the lowest bit.
inline std::uint64_t bits_of(const Mask16 (&masks)[8]) {
  static constexpr std::uint8_t weights[16] = {1, 2, 4, 8, 16, 32, 64, 128, 1, 2, 4, 8, 16, 32, 64, 128};
  const uint8x16_t weight = vld1q_u8(weights);
  const auto weighted = [&](Mask16 a, Mask16 b) {
    return vandq_u8(vuzp1q_u8(vreinterpretq_u8_u16(a.v), vreinterpretq_u8_u16(b.v)), weight);
  };
  const uint8x16_t first = vpaddq_u8(weighted(masks[0], masks[1]), weighted(masks[2], masks[3]));
  const uint8x16_t second = vpaddq_u8(weighted(masks[4], masks[5]), weighted(masks[6], masks[7]));
  const uint8x16_t sums = vpaddq_u8(first, second);
  return vgetq_lane_u64(vreinterpretq_u64_u8(vpaddq_u8(sums, sums)), 0);
}
/// Writes `base` + the positions of the set bits, ascending, and up to 64 values of no meaning.
/// @return the number of set bits
inline std::size_t write_positions(std::uint64_t bits, std::uint16_t base, std::uint16_t* to) {
  const auto count = static_cast<std::size_t>(__builtin_popcountll(bits));
  std::size_t done = 0;
  do {
    for (std::size_t i = 0; i < 4; ++i) {
      to[done + i] = static_cast<std::uint16_t>(base + __builtin_ctzll(bits | std::uint64_t{1} << 63));
      bits &= bits - 1;
    }
    done += 4;
  } while (done < count);
  return count;
}

/// Writes the first `count` lanes, 1 to all, of a vector of equal values.
inline void fill_first(U16 value, std::uint16_t* to, std::size_t count) {
  // Overlapping stores: reading what stands there would wait for a neighbour's store.
  const auto four = static_cast<std::uint64_t>(vgetq_lane_u64(vreinterpretq_u64_u16(value.v), 0));
  if (count < 4) {
    to[0] = to[count / 2] = to[count - 1] = static_cast<std::uint16_t>(four);
    return;
  }
  for (std::size_t i = 0; i + 4 < count; i += 4) std::memcpy(to + i, &four, sizeof four);
  std::memcpy(to + count - 4, &four, sizeof four);
}

/// Adds two numbers of `words` words, lowest first.
inline void add_long(const std::uint64_t* a, const std::uint64_t* b, std::uint64_t* sum,
                     std::size_t words) {
  std::uint64_t carry = 0;
  for (std::size_t i = 0; i < words; ++i) {
    const std::uint64_t part = a[i] + b[i];
    sum[i] = part + carry;
    carry = static_cast<std::uint64_t>(part < a[i]) | static_cast<std::uint64_t>(sum[i] < part);
  }
}
/// A bit for each of up to 64 words: whether it is not 0.
inline std::uint64_t nonzero_words(const std::uint64_t* words, std::size_t count) {
  std::uint64_t bits = 0;
  for (std::size_t i = 0; i < count; ++i) bits |= std::uint64_t{words[i] != 0} << i;
  return bits;
}

}  // namespace filterprocessor::neon

#endif
