#ifndef FILTERPROCESSOR_TESTS_SUPPORT_RANDOM_IMAGE_H
#define FILTERPROCESSOR_TESTS_SUPPORT_RANDOM_IMAGE_H

#include <cstdint>
#include <random>
#include <vector>

namespace filterprocessor {

using Pixels = std::vector<std::uint16_t>;

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

}  // namespace filterprocessor

#endif
