#include "scenes.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace filterprocessor::bench {

namespace {

class Random {
 public:
  explicit Random(std::uint32_t seed) : state_(seed * 0x9e3779b97f4a7c15u + 0x1234567u) {}
  std::uint32_t bits() {  // a linear congruential step, mixed
    state_ = state_ * 6364136223846793005u + 1442695040888963407u;
    auto x = static_cast<std::uint32_t>(state_ >> 32);
    x = (x ^ x >> 15) * 0x2c1b3c6du;
    return x ^ x >> 13;
  }
  /// 0 to `end` - 1.
  int below(int end) {
    return static_cast<int>((std::uint64_t{bits()} * static_cast<std::uint32_t>(end)) >> 32);
  }
  /// About normal, with a standard deviation of 1.
  double normal() {
    double sum = 0;
    for (int i = 0; i < 4; ++i) sum += below(1 << 16);
    return (sum / (1 << 16) - 2.0) * 1.7320508;
  }

 private:
  std::uint64_t state_;
};

/// Calls `paint(pixel index)` for the pixels of an ellipse that lie inside the image.
template <typename Paint>
void ellipse(const Image& image, int cx, int cy, int rx, int ry, Paint&& paint) {
  for (int y = std::max(0, cy - ry); y <= std::min(image.height - 1, cy + ry); ++y) {
    for (int x = std::max(0, cx - rx); x <= std::min(image.width - 1, cx + rx); ++x) {
      const double dx = static_cast<double>(x - cx) / (rx + 0.5);
      const double dy = static_cast<double>(y - cy) / (ry + 0.5);
      if (dx * dx + dy * dy <= 1.0)
        paint(static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) +
              static_cast<std::size_t>(x));
    }
  }
}

/// Distance of the surface seen at (u, v), both 0 to 1, in millimetres.
double surface(double u, double v) {
  const double back_wall = 3600 + 700 * u;
  const double floor = v > 0.45 ? 650 / (v - 0.38) : 1e9;
  const double left_wall = u < 0.3 ? 900 / (0.36 - u) : 1e9;
  double z = std::min({back_wall, floor, left_wall});
  struct Box {
    double u0, v0, u1, v1, z, slope;
  };
  static constexpr Box kBoxes[] = {{0.55, 0.30, 0.75, 0.75, 1500, 400},
                                   {0.15, 0.50, 0.35, 0.85, 1100, -200},
                                   {0.78, 0.10, 0.80, 0.95, 1900, 0},
                                   {0.40, 0.62, 0.52, 0.92, 900, 150},
                                   {0.85, 0.45, 0.98, 0.80, 2300, 300}};
  for (const Box& box : kBoxes) {
    if (u >= box.u0 && u < box.u1 && v >= box.v0 && v < box.v1)
      z = std::min(z, box.z + box.slope * (u - box.u0));
  }
  return z;
}

}  // namespace

Image stereo_scene(int width, int height, std::uint32_t seed) {
  Image image{width, height, {}};
  image.pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  Random random(seed);
  std::size_t i = 0;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x, ++i) {
      const double z = surface(static_cast<double>(x) / width, static_cast<double>(y) / height);
      const double noise = 0.3e-6 * z * z * random.normal();
      image.pixels[i] = static_cast<std::uint16_t>(std::clamp(z + noise, 1.0, 65535.0));
    }
  }
  const double area = static_cast<double>(width) * height / (848.0 * 480.0);
  const double length = std::sqrt(area);
  const int blobs = static_cast<int>(105 * 1.0) + 1;
  for (int n = 0; n < blobs; ++n) {
    const int rx = 3 + random.below(static_cast<int>(18 * length) + 1);
    const int ry = 3 + random.below(static_cast<int>(11 * length) + 1);
    ellipse(image, random.below(width), random.below(height), rx, ry,
            [&](std::size_t p) { image.pixels[p] = 0; });
  }
  const int band = width / 60;
  for (int y = 0; y < height; ++y) {
    std::fill_n(image.pixels.begin() + static_cast<std::ptrdiff_t>(y) * width, band + random.below(3),
                std::uint16_t{0});
  }
  const int speckles = static_cast<int>(300 * area) + 1;
  for (int n = 0; n < speckles; ++n) {
    const auto value = static_cast<std::uint16_t>(400 + random.below(5000));
    ellipse(image, random.below(width), random.below(height), random.below(4), random.below(4),
            [&](std::size_t p) { image.pixels[p] = value; });
  }
  return image;
}

Image scattered_holes(int width, int height, std::uint32_t seed) {
  Image image = stereo_scene(width, height, seed);
  Random random(seed + 1);
  for (std::uint16_t& pixel : image.pixels) {
    if (random.bits() % 2 == 0) pixel = 0;
  }
  return image;
}

SceneFigures figures_of(const Image& image, int threshold) {
  std::size_t holes = 0;
  std::size_t runs = 0;
  for (std::size_t i = 0; i < image.size(); ++i) {
    const int value = image.pixels[i];
    holes += value == 0;
    const bool row_start = i % static_cast<std::size_t>(image.width) == 0;
    const int left = row_start ? 0 : image.pixels[i - 1];
    runs += value != 0 && (left == 0 || std::abs(value - left) > threshold);
  }
  const auto count = static_cast<double>(image.size());
  return {static_cast<double>(holes) / count, static_cast<double>(runs) / count};
}

}  // namespace filterprocessor::bench
