#include "cases/images.h"

#include "scenes.h"

namespace filterprocessor {

Sides any_sides(Source& source, std::size_t smallest) {
  std::size_t width = source.size(1, 96);
  std::size_t height = source.size(1, 96);
  switch (source.number<std::uint8_t>() % 32) {
    case 1:
      width = source.size(1, 75), height = source.pick({source.size(97, 2000), source.size(2000, 2300)});
      break;
    case 2:
      width = source.size(1, source.pick({3000, 32767})), height = source.size(1, 3);
      break;
    case 3:
      width = source.pick({source.size(97, 700), source.size(1279, 1281)}), height = source.size(16, 256);
      break;
    case 4:
    case 5:
    case 6:
      width = source.pick<std::size_t>({1, 2, 7, 8, 15, 16, 17, 31, 32, 33, 63, 64, 65, 127, 128, 129});
      break;
    default:
      break;
  }
  return {std::max(width, smallest), std::max(height, smallest)};
}

static Pixels any_scene(Source& source, const Sides& sides) {
  if (sides.area() == 0) return {};
  const auto make = source.pick({+[](int w, int h) { return bench::stereo_scene(w, h); }, bench::comb,
                                 bench::spiral, bench::checkerboard});
  return make(static_cast<int>(sides.width), static_cast<int>(sides.height)).pixels;
}

Pixels any_pixels(Source& source, const Sides& sides, std::uint16_t invalid) {
  enum Kind { kNoise, kLevels, kCheckers, kRamp, kSpots, kBlocks, kInput, kEnds, kScene, kKinds };
  constexpr std::uint16_t ends[] = {0, 1, 2, 32766, 32767, 32768, 32769, 65534, 65535};
  const int kind = source.integer(0, kKinds - 1);
  const auto base = source.number<std::uint16_t>();
  const auto step = source.pick<std::size_t>({1, 2, 5, 16, 17, 300, 4000, 65535});
  const unsigned invalid_percent = source.pick({0u, 0u, 1u, 10u, 30u, 50u, 90u, 99u});
  const std::size_t invalid_run = source.pick({1u, 1u, 3u, 20u});
  std::minstd_rand random(source.number<std::uint32_t>());
  const std::size_t levels = 2 + base % 7u;

  bool hole = false;
  // Scenes are slow to make, so large images repeat them.
  const Sides tile = {std::min<std::size_t>(sides.width, 128), std::min<std::size_t>(sides.height, 128)};
  const Pixels scene = kind == kScene ? any_scene(source, tile) : Pixels{};
  Pixels pixels(sides.area());
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    const std::size_t row = i / sides.width;
    const std::size_t col = i % sides.width;
    const std::size_t noise = random() >> 3;
    std::size_t value = base;
    if (kind == kNoise) value = noise;
    if (kind == kLevels) value += noise % levels * step;
    if (kind == kCheckers) value += (row + col) % 2 * step;
    if (kind == kRamp) value += (row + col * levels) * step / 4 + noise % levels;
    if (kind == kSpots && noise % 16 == 0) value += noise % levels * step;
    if (kind == kBlocks) value += (row / levels + col / (levels + 3)) * step;
    if (kind == kInput) value += source.number<std::uint8_t>() * step;
    if (kind == kScene) value = scene[row % tile.height * tile.width + col % tile.width];
    if (kind == kEnds) value = ends[noise % std::size(ends)];
    if (noise / 256 % invalid_run == 0) hole = noise / 65536 % 100 < invalid_percent;
    pixels[i] = hole ? invalid : static_cast<std::uint16_t>(value);
  }
  return pixels;
}

Pixels any_table(Source& source, std::size_t size) {
  Pixels table(size);
  const int most = source.pick({300, 0, 3, 20, 40000, 65535});
  for (std::uint16_t& entry : table) entry = static_cast<std::uint16_t>(source.integer(0, most));
  // Both sides of the sign bit, for who compares signed numbers.
  if (most == 40000 && size > 0) table[0] = static_cast<std::uint16_t>(32767 + table[0] % 2);
  return table;
}

}  // namespace filterprocessor
