/// The vector operations that every level has, by their declarations; its header defines them. Included by that header
/// once the level's registers are known.
#ifndef FILTERPROCESSOR_KERNELS_SIMD_VOCABULARY_H
#define FILTERPROCESSOR_KERNELS_SIMD_VOCABULARY_H

#include <cstddef>
#include <cstdint>

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

/// A flag for each lane of a U16.
struct Mask16 {
  Registers::Mask16 v;

  /// The first `count` lanes.
  static Mask16 first(std::size_t count);
  /// The first lane of every group.
  static Mask16 group_starts();
  bool any() const;

  /// Moves every group's flags up by N lanes and sets the first N.
  template <int N>
  Mask16 shifted_in_groups() const;
  /// Every group gets the flag of its last lane.
  Mask16 last_of_groups() const;
  /// Moves the groups up by N and sets the first N.
  template <int N>
  Mask16 shifted_by_groups() const;
};
Mask16 operator&(Mask16 a, Mask16 b);
Mask16 operator|(Mask16 a, Mask16 b);
Mask16 operator~(Mask16 a);
/// The flags of a that b lacks.
Mask16 without(Mask16 a, Mask16 b);

/// Unsigned 16-bit values in groups of eight (128 bits).
struct U16 {
  static constexpr std::size_t lanes = sizeof(Registers::U16) / sizeof(std::uint16_t);
  static constexpr std::size_t groups = lanes / 8;

  Registers::U16 v;

  static U16 zero();
  static U16 splat(std::uint16_t value);
  static U16 load(const std::uint16_t* from);
  void store(std::uint16_t* to) const;
  /// Reads `count` values (at most `lanes`) and sets the other lanes to 0. With none, `from` may be null.
  static U16 load_first(const std::uint16_t* from, std::size_t count);
  void store_first(std::uint16_t* to, std::size_t count) const;
  /// Writes the flagged lanes. `old` is what stands there.
  void store_where(Mask16 mask, std::uint16_t* to, U16 old) const;

  Mask16 is_zero() const;

  /// Moves every group's lanes up by N; 0 moves in.
  template <int N>
  U16 shifted_in_groups() const;
  /// Every lane of a group gets the group's last value.
  U16 last_of_groups() const;
  /// Moves the groups up by N; 0 moves in.
  template <int N>
  U16 shifted_by_groups() const;
  /// Every lane gets the last value.
  U16 last() const;
  /// The odd lanes of the two vectors, those of `a` first.
  static U16 odd_lanes(U16 a, U16 b);
  /// Every odd lane twice.
  U16 odd_doubled() const;

  /// Entries that lookup() takes from a table.
  static constexpr std::size_t table_entries = Registers::table_entries;
  /// `table_entries` entries for lookup().
  static U16 load_table(const std::uint16_t* entries);
  /// The entries of a loaded table at indices below `table_entries`.
  static U16 lookup(U16 table, U16 index);

  /// Reads eight values per group, group g at from + offset[g].
  static U16 load_groups(const std::uint16_t* from, const std::size_t (&offset)[groups]);
  void store_groups(std::uint16_t* to, const std::size_t (&offset)[groups]) const;
};

U16 operator&(U16 a, U16 b);
U16 operator|(U16 a, U16 b);
U16 operator+(U16 a, U16 b);
U16 operator-(U16 a, U16 b);
U16 operator>>(U16 a, unsigned count);
template <int N>
U16 shifted_left(U16 a);
template <int N>
U16 shifted_right(U16 a);
U16 add_saturated(U16 a, U16 b);
U16 subtract_saturated(U16 a, U16 b);
U16 min(U16 a, U16 b);
U16 max(U16 a, U16 b);
/// a or b by lane, whichever is larger where flagged; a elsewhere.
U16 max_where(Mask16 mask, U16 a, U16 b);
U16 select(Mask16 mask, U16 yes, U16 no);
/// a where flagged, 0 elsewhere.
U16 keep(Mask16 mask, U16 a);
/// value + 1 where flagged.
U16 increment_where(Mask16 mask, U16 value);
/// 65535 - a; 0 where a is 0.
U16 complement_nonzero(U16 a);
/// The low 14 bits of each lane as a two's-complement number.
U16 sign_extended_14(U16 a);
/// The lanes of a and b in turn: of their lower halves, and of their upper halves.
U16 interleave_low(U16 a, U16 b);
U16 interleave_high(U16 a, U16 b);
/// Transposes the eight by eight values of every group.
void transpose_groups(U16 (&rows)[8]);

Mask16 equal(U16 a, U16 b);
Mask16 differ(U16 a, U16 b);
/// a <= b, unsigned.
Mask16 at_most(U16 a, U16 b);

/// The flags of 64 or 32 lanes in order, the first in the lowest bit.
std::uint64_t bits_of(const Mask16 (&masks)[64 / U16::lanes]);
std::uint32_t bits_of(const Mask16 (&masks)[32 / U16::lanes]);
/// Writes `base` + the positions of the set bits, ascending, and up to 64 values of no meaning.
/// @return the number of set bits
std::size_t write_positions(std::uint64_t bits, std::uint16_t base, std::uint16_t* to);
/// Writes the first `count` lanes, 1 to all, of a vector of equal values.
void fill_first(U16 value, std::uint16_t* to, std::size_t count);

/// Adds two numbers of `words` words, lowest first.
void add_long(const std::uint64_t* a, const std::uint64_t* b, std::uint64_t* sum, std::size_t words);
/// A bit for each of up to 64 words: whether it is not 0.
std::uint64_t nonzero_words(const std::uint64_t* words, std::size_t count);

/// A flag for each lane of an F64.
struct Mask64 {
  Registers::Mask64 v;
};
Mask64 operator&(Mask64 a, Mask64 b);
/// The flags of a that b lacks.
Mask64 without(Mask64 a, Mask64 b);

struct F64 {
  static constexpr std::size_t lanes = sizeof(Registers::F64) / sizeof(double);

  Registers::F64 v;

  static F64 splat(double value);
  /// start, start + 1, ...
  static F64 counting_from(double start);
  /// Writes the flagged lanes (0 to below 65536) truncated, and 0 for the others.
  void store_truncated(Mask64 mask, std::uint16_t* to) const;
};
F64 operator+(F64 a, F64 b);
F64 operator-(F64 a, F64 b);
F64 operator*(F64 a, F64 b);
F64 operator/(F64 a, F64 b);
/// a x b + c, rounded once.
F64 fused_multiply_add(F64 a, F64 b, F64 c);
F64 abs(F64 a);
Mask64 operator<(F64 a, F64 b);
Mask64 operator>(F64 a, F64 b);
Mask64 operator<=(F64 a, F64 b);
Mask64 operator>=(F64 a, F64 b);

/// A flag for each lane of an F32.
struct Mask32 {
  Registers::Mask32 v;
};
struct F32 {
  Registers::F32 v;
};
/// Half of a vector's pixels as 32-bit floats, biased or not as suits the level.
struct PixelF32 {
  static constexpr float kBias = 8388608;

  Registers::F32 v;
};
/// Both exact.
F32 operator-(PixelF32 a, PixelF32 b);
PixelF32 min(PixelF32 a, PixelF32 b);
F32 operator+(F32 a, F32 b);
F32 abs(F32 a);
Mask32 operator<(F32 a, F32 b);

// Each level has these too:
//
// Factor(float): a number that pixels are multiplied by, at most kLargest in magnitude.
//   PixelF32 * Factor: the product, rounded once.
//   add_product(F32 sum, PixelF32, Factor): sum + product in the processor family's roundings, two on x86, one on Arm.
// PixelHalves(U16): the `pixels` and, as floats, a `first` and a `second` half of them.
//   truncated_where(in_first, first, in_second, second, otherwise): truncated values (0 to below 65536) where
//   flagged, the pixels of `otherwise` elsewhere.
// QuotientOf<kWholeOffset>(numerator, offset): trunc(numerator / (k + offset)) in 32-bit float by (U16 k, Mask16); lanes
//   flagged must lie between 0 and 65535, the others become 0. takes(offset): whether kWholeOffset, which costs no more
//   and often less, may be true.
// Pixels(U16 value): pixels that know where they are valid() in the spatial filter's sense, 1 to 32767 on x86 and 1 to
//   65535 on Arm; with(other pixels that are valid in the same places); close(a, b, bound): where both are valid and
//   closer than `bound`, equal pixels flagged or not.
// counts_below(a, b): a < b in the same sense, signed on x86 and unsigned on Arm.
// Picker<N>, N = 1, 2 or 4: pick() writes `lanes` pixels out of the `reach` from an address on, at the positions it is
//   made of().
//
// Blends of the spatial filter, of which a family has its own: mean_to_even_where(), multiply_round(), rounded() on x86,
// wrapped_mean_where() on Arm.

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL

#endif
