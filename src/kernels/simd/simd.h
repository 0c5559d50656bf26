/// The vector types of the level that a file is compiled for, and what follows from them. vocabulary.h says what every
/// level has; intrinsics stand in the levels' headers alone.
#ifndef FILTERPROCESSOR_KERNELS_SIMD_SIMD_H
#define FILTERPROCESSOR_KERNELS_SIMD_SIMD_H

#include <cstddef>
#include <cstdint>

#if !defined(FILTERPROCESSOR_LEVEL)
#error "compile vector kernels for one of the levels of cmake/KernelLevels.cmake"
#endif
#include FILTERPROCESSOR_LEVEL_HEADER

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

inline constexpr std::size_t smaller(std::size_t a, std::size_t b) { return a < b ? a : b; }

/// A value for each pixel from a table of up to `capacity`, by the pixel shifted right. Pixels past the
/// end take the last entry.
class SmallTable {
 public:
  static constexpr std::size_t capacity = U16::table_entries;

  /// @param entries  `capacity` of them, the last one repeated as needed
  SmallTable(const std::uint16_t* entries, unsigned shift)
      : entries_(U16::load_table(entries)), shift_(shift) {}
  U16 operator()(U16 pixels) const {
    return U16::lookup(entries_, min(pixels >> shift_, U16::splat(capacity - 1)));
  }

 private:
  U16 entries_;
  unsigned shift_;
};

/// Sets `count` pixels to the lanes' one value. Stores overlap rather than reach further: reading what stands
/// behind would wait for them.
[[gnu::always_inline]] inline void set_run(std::uint16_t* pixels, std::size_t count, U16 value) {
  if (count >= U16::lanes) {
    for (std::size_t i = 0; i + U16::lanes < count; i += U16::lanes) value.store(pixels + i);
    value.store(pixels + count - U16::lanes);
  } else if (count != 0) {
    fill_first(value, pixels, count);
  }
}

/// Pixels in a cache line.
inline constexpr std::size_t kCacheLine = 32;

/// How far a sweep through memory asks for pixels in advance.
inline constexpr std::size_t kSweepAhead = 16 * kCacheLine;

/// Asks for the cache line of the pixel `further` on. Nothing is read: it may lie past the image. On x86
/// only, where its use has been measured.
[[gnu::always_inline]] inline void prefetch([[maybe_unused]] const std::uint16_t* at,
                                            [[maybe_unused]] std::size_t further) {
#if defined(__x86_64__)
  const auto address = reinterpret_cast<std::uintptr_t>(at) + further * sizeof *at;
  __builtin_prefetch(reinterpret_cast<const void*>(address));
#endif
}

/// Calls work(i) for the first pixel i of every whole vector of the pixels begin .. end - 1, and ahead(i)
/// before each cache line of them.
/// @return the first pixel that is left over
template <typename Ahead, typename Work>
[[gnu::always_inline]] inline std::size_t sweep(std::size_t begin, std::size_t end, Ahead ahead,
                                                Work work) {
  std::size_t i = begin;
  for (; i + kCacheLine <= end; i += kCacheLine) {
    ahead(i);
    for (std::size_t j = 0; j < kCacheLine; j += U16::lanes) work(i + j);
  }
  for (; i + U16::lanes <= end; i += U16::lanes) work(i);
  return i;
}

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL

#endif
