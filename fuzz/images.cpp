#include "images.h"

#include <algorithm>
#include <random>

namespace filterprocessor::fuzz {

Sides any_sides(FuzzInput& input, std::size_t smallest) {
  int width = input.integer(1, 96);
  int height = input.integer(1, 96);
  switch (input.number<std::uint8_t>() % 32) {
    case 1:
      width = input.integer(1, 3), height = input.integer(1, 3000);
      break;
    case 2:
      width = input.integer(1, 3000), height = input.integer(1, 3);
      break;
    case 3:
      width = input.integer(97, 700), height = input.integer(16, 256);
      break;
    case 4:
    case 5:
    case 6:
      width = input.pick({1, 2, 7, 8, 15, 16, 17, 31, 32, 33, 63, 64, 65, 127, 128, 129});
      break;
    default:
      break;
  }
  return {std::max(static_cast<std::size_t>(width), smallest),
          std::max(static_cast<std::size_t>(height), smallest)};
}

Pixels any_pixels(FuzzInput& input, const Sides& sides, std::uint16_t invalid) {
  enum Kind { kNoise, kLevels, kCheckers, kRamp, kSpots, kBlocks, kInput, kKinds };
  const int kind = input.integer(0, kKinds - 1);
  const auto base = input.number<std::uint16_t>();
  const auto step = input.pick<std::size_t>({1, 2, 5, 16, 17, 300, 4000, 65535});
  const int invalid_percent = input.pick({0, 0, 1, 10, 30, 50, 90});
  std::minstd_rand random(input.number<std::uint32_t>());
  const std::size_t levels = 2 + base % 7u;

  Pixels pixels(sides.area());
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    const std::size_t row = i / sides.width;
    const std::size_t col = i % sides.width;
    const std::size_t noise = random() >> 3;
    std::size_t value = base;
    if (kind == kNoise) value = noise;
    if (kind == kLevels) value += noise % levels * step;
    if (kind == kCheckers) value += (row + col) % 2 * step;
    if (kind == kRamp) value += (row + col * levels) * step / 4;
    if (kind == kSpots && noise % 16 == 0) value += noise % levels * step;
    if (kind == kBlocks) value += (row / levels + col / (levels + 3)) * step;
    if (kind == kInput) value += input.number<std::uint8_t>() * step;
    if (static_cast<int>(noise / 65536 % 100) < invalid_percent) value = invalid;
    pixels[i] = static_cast<std::uint16_t>(value);
  }
  return pixels;
}

Pixels any_table(FuzzInput& input, std::size_t size) {
  Pixels table(size);
  const int most = input.pick({300, 0, 3, 20, 40000, 65535});
  for (std::uint16_t& entry : table) entry = static_cast<std::uint16_t>(input.integer(0, most));
  return table;
}

}  // namespace filterprocessor::fuzz
