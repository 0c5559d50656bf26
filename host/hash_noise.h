/// Repeatable noise: pure functions of integers, the same on every machine and compiler.
#ifndef FILTERPROCESSOR_HOST_HASH_NOISE_H
#define FILTERPROCESSOR_HOST_HASH_NOISE_H

#include <cmath>
#include <cstdint>

namespace devhost {

// Odd multipliers out of the digits of the golden ratio and of the roots of 2 and 3.
inline constexpr std::uint64_t kGolden = 0x9E3779B97F4A7C15u;
inline constexpr std::uint64_t kRoot2 = 0x6A09E667F3BCC909u;
inline constexpr std::uint64_t kRoot3 = 0xBB67AE8584CAA73Bu;

/// Spreads every bit of `value` over the result.
inline std::uint64_t scramble(std::uint64_t value) {
  value = (value ^ (value >> 31)) * kGolden;
  value = (value ^ (value >> 29)) * kRoot2;
  return value ^ (value >> 32);
}

/// A hash of two grid coordinates under `salt`.
inline std::uint64_t hash(std::uint64_t salt, std::int64_t x, std::int64_t y) {
  return scramble(salt + static_cast<std::uint64_t>(x) * kRoot3 + static_cast<std::uint64_t>(y) * kRoot2);
}

/// 16 bits of a hash as a number in [0, 1).
inline double fraction(std::uint64_t bits, int shift) {
  return static_cast<double>((bits >> shift) & 0xFFFF) / 65536.0;
}

/// Nearly normal: mean 0, deviation 1, never beyond 3.5.
inline double bell(std::uint64_t bits) {
  const double sum = fraction(bits, 0) + fraction(bits, 16) + fraction(bits, 32) + fraction(bits, 48);
  return (sum - 2.0) * 1.7320508;
}

/// Smooth noise in [-1, 1] with one random value per unit square.
inline double value_noise(std::uint64_t salt, double x, double y) {
  const double left = std::floor(x), top = std::floor(y);
  const auto column = static_cast<std::int64_t>(left), row = static_cast<std::int64_t>(top);
  const auto ease = [](double t) { return t * t * (3.0 - 2.0 * t); };
  const auto mix = [](double a, double b, double t) { return a + (b - a) * t; };
  const auto corner = [&](int dx, int dy) { return fraction(hash(salt, column + dx, row + dy), 16); };
  const double u = ease(x - left), v = ease(y - top);
  return 2.0 * mix(mix(corner(0, 0), corner(1, 0), u), mix(corner(0, 1), corner(1, 1), u), v) - 1.0;
}

}  // namespace devhost

#endif
