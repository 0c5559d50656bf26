#include "scenes.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace filterprocessor::bench {

namespace {

constexpr std::uint16_t kBright = 3000;
constexpr std::uint16_t kDark = 2000;

class Random {
 public:
  explicit Random(std::uint32_t seed) : state_(seed * 2654435761u + 88675123u) {}
  std::uint32_t next() {
    state_ ^= state_ << 13;
    state_ ^= state_ >> 17;
    state_ ^= state_ << 5;
    return state_;
  }
  /// 0 to `count` - 1.
  int below(int count) { return static_cast<int>(next() % static_cast<std::uint32_t>(count)); }
  /// 0 to 1, without 1.
  double unit() { return next() / 4294967296.0; }
  /// About normal, of standard deviation 1.
  double normal() { return (unit() + unit() + unit() + unit() - 2.0) * 1.7320508; }

 private:
  std::uint32_t state_;
};

/// Calls `visit(row, col)` for the pixels of an ellipse whose outline is uneven.
template <typename Visit>
void visit_blob(const Image& image, double row, double col, double radius_row, double radius_col,
                double phase, Visit visit) {
  const int top = std::max(0, static_cast<int>(row - 1.5 * radius_row));
  const int bottom = std::min(image.height - 1, static_cast<int>(row + 1.5 * radius_row) + 1);
  const int left = std::max(0, static_cast<int>(col - 1.5 * radius_col));
  const int right = std::min(image.width - 1, static_cast<int>(col + 1.5 * radius_col) + 1);
  for (int y = top; y <= bottom; ++y) {
    for (int x = left; x <= right; ++x) {
      const double dy = (y - row) / radius_row;
      const double dx = (x - col) / radius_col;
      const double edge = 1.0 + 0.25 * std::sin(3.0 * std::atan2(dy, dx) + phase);
      if (dx * dx + dy * dy <= edge * edge) visit(y, x);
    }
  }
}

}  // namespace

Image::Image(int w, int h, std::uint16_t value)
    : width(w), height(h), pixels(static_cast<std::size_t>(w) * static_cast<std::size_t>(h), value) {}

Image stereo_scene(int width, int height, std::uint32_t seed) {
  constexpr double kBaselineFocal = 20000.0;  // mm x pixels
  Random random(seed + 1);
  Image image(width, height);
  const double area = static_cast<double>(width) * height;
  const double scale = std::sqrt(area / (848.0 * 480.0));

  // Depth as disparity: a back wall, a floor and surfaces of different tilt in front of them.
  std::vector<double> disparity(image.pixels.size());
  const auto index = [&](int row, int col) {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(width) +
           static_cast<std::size_t>(col);
  };
  for (int y = 0; y < height; ++y) {
    const double v = static_cast<double>(y) / height;
    for (int x = 0; x < width; ++x) {
      const double u = static_cast<double>(x) / width;
      disparity[index(y, x)] = std::max(4.0 + 1.5 * u, v < 0.6 ? 0.0 : 4.0 + 60.0 * (v - 0.6));
    }
  }
  for (int k = 0; k < 18; ++k) {
    const double base = 5.0 + 28.0 * random.unit() * random.unit();
    const double tilt_x = (random.unit() - 0.5) * 4.0 / width;
    const double tilt_y = (random.unit() - 0.5) * 4.0 / height;
    const double row = random.unit() * height;
    const double col = random.unit() * width;
    visit_blob(image, row, col, (20.0 + 70.0 * random.unit()) * scale,
               (20.0 + 80.0 * random.unit()) * scale, 6.3 * random.unit(), [&](int y, int x) {
                 disparity[index(y, x)] = base + tilt_x * (x - col) + tilt_y * (y - row);
               });
  }

  // Matching noise is correlated along a row; a few pixels fall out of line.
  for (int y = 0; y < height; ++y) {
    double drift = 0.0;
    for (int x = 0; x < width; ++x) {
      drift = 0.9 * drift + 0.1 * random.normal();
      const double stray = random.below(1000) < 2 ? 0.8 * random.normal() : 0.0;
      const double d = disparity[index(y, x)] + 0.12 * drift + 0.010 * random.normal() + stray;
      const double quantised = std::max(1.0, std::round(d * 64.0)) / 64.0;
      image.at(y, x) = static_cast<std::uint16_t>(std::min(65535.0, kBaselineFocal / quantised));
    }
  }

  const int speckles = static_cast<int>(300.0 * area / (848.0 * 480.0));
  for (int k = 0; k < speckles; ++k) {
    const auto value = static_cast<std::uint16_t>(600 + random.below(4000));
    visit_blob(image, random.unit() * height, random.unit() * width, 0.8 + 2.5 * random.unit(),
               0.8 + 3.5 * random.unit(), 6.3 * random.unit(), [&](int y, int x) {
                 image.at(y, x) = static_cast<std::uint16_t>(value + random.below(5));
               });
  }

  // Nothing to match beside the left border and behind edges; blobs without texture.
  const int border = static_cast<int>(14.0 * scale);
  for (int y = 0; y < height; ++y) {
    std::fill_n(&image.at(y, 0), std::min(width, border + random.below(4)), std::uint16_t{0});
  }
  const int blobs = static_cast<int>(90.0 * scale * scale);
  for (int k = 0; k < blobs; ++k) {
    const double size = 3.0 + 22.0 * random.unit() * random.unit();
    visit_blob(image, random.unit() * height, random.unit() * width, size, size * (0.6 + random.unit()),
               6.3 * random.unit(), [&](int y, int x) { image.at(y, x) = 0; });
  }
  return image;
}

Image scattered_holes(int width, int height, std::uint32_t seed) {
  Image image = stereo_scene(width, height, seed);
  Random random(seed + 2);
  for (std::uint16_t& pixel : image.pixels) {
    if (random.below(2) == 0) pixel = 0;
  }
  return image;
}

Image textured_scene(int width, int height, std::uint32_t seed) {
  constexpr double kNoise = 7.2;
  Random random(seed + 3);
  Image image(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const double surface = 1500.0 + 300.0 * std::sin(0.010 * x) + 200.0 * std::cos(0.013 * y) +
                             100.0 * std::sin(0.05 * (x + y));
      image.at(y, x) = static_cast<std::uint16_t>(std::lround(surface + kNoise * random.normal()));
      if (random.below(1000) < 5) image.at(y, x) = 0;
    }
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

std::vector<std::uint16_t> scene_table() { return {3, 12, 27, 48, 75, 108, 147}; }

Image noise(int width, int height, std::uint16_t low, std::uint16_t high, std::uint32_t seed) {
  Random random(seed + 1);
  Image image(width, height);
  for (std::uint16_t& pixel : image.pixels) {
    pixel = static_cast<std::uint16_t>(low + random.below(high - low + 1));
  }
  return image;
}

Image checkerboard(int width, int height) {
  Image image(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) image.at(y, x) = (x + y) % 2 == 0 ? kBright : kDark;
  }
  return image;
}

Image comb(int width, int height) {
  Image image(width, height, kBright);
  for (int y = 0; y + 1 < height; ++y) {
    for (int x = 1; x < width; x += 2) image.at(y, x) = kDark;
  }
  return image;
}

Image spiral(int width, int height) {
  Image image(width, height, kDark);
  int top = 0, left = 0, bottom = height - 1, right = width - 1;
  while (top <= bottom && left <= right) {
    for (int x = std::max(0, left - 2); x <= right; ++x) image.at(top, x) = kBright;
    for (int y = top; y <= bottom; ++y) image.at(y, right) = kBright;
    for (int x = left; x <= right; ++x) image.at(bottom, x) = kBright;
    for (int y = std::min(bottom, top + 2); y <= bottom; ++y) image.at(y, left) = kBright;
    top += 2, left += 2, bottom -= 2, right -= 2;
  }
  return image;
}

Image ramp(int width, int height, std::uint16_t step) {
  Image image(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      image.at(y, x) = static_cast<std::uint16_t>(500 + (x + y) % 64 * step);
    }
  }
  return image;
}

}  // namespace filterprocessor::bench
