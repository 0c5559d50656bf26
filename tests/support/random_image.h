#ifndef FILTERPROCESSOR_TESTS_SUPPORT_RANDOM_IMAGE_H
#define FILTERPROCESSOR_TESTS_SUPPORT_RANDOM_IMAGE_H

#include <cstdint>
#include <initializer_list>
#include <random>

#include "support/pixels.h"

namespace filterprocessor {

/// `count` pixels, about `hole_percent` of them 0 and most of these in runs, now and then 65535 or its
/// neighbour.
inline Pixels random_pixels(std::mt19937& random, std::size_t count, unsigned hole_percent) {
  Pixels pixels(count);
  bool hole = false;
  for (std::uint16_t& pixel : pixels) {
    const auto bits = static_cast<std::uint32_t>(random());
    if (bits % 3 == 0) hole = (bits >> 8) % 100 < hole_percent;
    pixel = static_cast<std::uint16_t>(bits >> 16);
    if (hole) pixel = 0;
    if ((bits >> 4) % 50 == 0) pixel = static_cast<std::uint16_t>(65534 + bits % 2);
  }
  return pixels;
}

/// Numbers for one test, the same in every run.
class Random {
 public:
  explicit Random(std::uint32_t seed) : engine_(seed) {}

  /// Uniform over first..last.
  int integer(int first, int last) { return std::uniform_int_distribution(first, last)(engine_); }
  float real(float first, float last) { return std::uniform_real_distribution(first, last)(engine_); }
  bool one_in(int n) { return integer(1, n) == 1; }
  template <typename T>
  T pick(std::initializer_list<T> values) {
    return values.begin()[integer(0, static_cast<int>(values.size()) - 1)];
  }

  /// Values that stay within `spread` of `centre` (wrapped to 16 bits), with one hole in `holes`.
  Pixels pixels(std::size_t count, int centre, int spread, int holes) {
    Pixels values(count);
    for (auto& value : values) {
      value = one_in(holes) ? std::uint16_t{0}
                            : static_cast<std::uint16_t>(centre + integer(-spread, spread));
    }
    return values;
  }

 private:
  std::mt19937 engine_;
};

}  // namespace filterprocessor

#endif
