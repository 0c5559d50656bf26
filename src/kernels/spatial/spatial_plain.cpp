#include <algorithm>
#include <type_traits>

#include "common/saturate.h"
#include "kernels/spatial/spatial.h"

namespace filterprocessor {

std::int32_t fast_abs(std::int32_t value) {
  const std::uint32_t sign = value < 0 ? ~0u : 0u;
  return static_cast<std::int32_t>((static_cast<std::uint32_t>(value) ^ sign) - sign);
}

namespace plain {

namespace {

/// The rules of the processor families that differ from each other.
struct SignedRules {
  using Number = std::int16_t;  // what 16 bits mean in a comparison

  static Number distance(std::uint16_t a, std::uint16_t b) {
    return static_cast<Number>(fast_abs(static_cast<std::int16_t>(a - b)));
  }
  static std::uint16_t blend(std::uint16_t previous, std::uint16_t current, float alpha) {
    const float sum = (1 - alpha) * previous + alpha * current;
    const float unit = 8388608;  // from here on floats are integers, so the addition rounds to one
    return static_cast<std::uint16_t>(std::clamp(saturate<std::int32_t>(sum + unit - unit), 0, 65535));
  }
};
struct UnsignedRules {
  using Number = std::uint16_t;

  static Number distance(std::uint16_t a, std::uint16_t b) {
    return static_cast<Number>(fast_abs(a - b));
  }
  static std::uint16_t blend(std::uint16_t previous, std::uint16_t current, float /*alpha*/) {
    return static_cast<std::uint16_t>(previous + current) >> 1;
  }
};
using Rules = std::conditional_t<kUnsignedPixels, UnsignedRules, SignedRules>;
using Number = Rules::Number;

bool valid(std::uint16_t pixel) { return static_cast<Number>(pixel) > 0; }
bool below(unsigned a, unsigned b) { return static_cast<Number>(a) < static_cast<Number>(b); }

/// @param bound  pixels are blended at distances below it
std::uint16_t smooth(std::uint16_t previous, std::uint16_t current, unsigned bound, float alpha) {
  if (!valid(previous) || !valid(current)) return current;
  const Number distance = Rules::distance(current, previous);
  if (distance > 0 && distance < static_cast<Number>(bound))
    return Rules::blend(previous, current, alpha);
  return current;
}

/// One pass along a row.
class RowPass {
 public:
  RowPass(const SpatialParameters& parameters, std::uint16_t first)
      : parameters_(parameters), previous_(first) {}

  void step(std::uint16_t& pixel) {
    const bool follows_valid = valid(previous_);
    const bool hole = !valid(pixel);
    if (follows_valid && hole) ++counter_;
    if (follows_valid && !hole) counter_ = 0;
    if (follows_valid && hole && below(counter_, parameters_.radius)) {
      pixel = previous_;
    } else {
      pixel = smooth(previous_, pixel, parameters_.thresholds.at(pixel) + 1u, parameters_.alpha);
    }
    previous_ = pixel;
  }

 private:
  const SpatialParameters& parameters_;
  std::uint16_t previous_;
  std::uint16_t counter_ = 0;
};

void spatial_horizontal(std::uint16_t* pixels, std::size_t width, std::size_t height,
                        const SpatialParameters& parameters) {
  const std::size_t rows = height / kSpatialGroup * kSpatialGroup;
  if (width < 2) return;
  for (std::size_t y = 0; y < rows; ++y) {
    std::uint16_t* row = pixels + y * width;
    RowPass to_right(parameters, row[0]);
    for (std::size_t x = 1; x < width - 1; ++x) to_right.step(row[x]);
    RowPass to_left(parameters, row[width - 1]);
    for (std::size_t x = width - 1; x-- > 0;) to_left.step(row[x]);
  }
}

void spatial_vertical(std::uint16_t* pixels, std::size_t width, std::size_t height,
                      const SpatialParameters& parameters) {
  const std::size_t columns = width / kSpatialGroup * kSpatialGroup;
  const auto smooth_row = [&](std::uint16_t* row, const std::uint16_t* previous) {
    for (std::size_t x = 0; x < columns; ++x) {
      row[x] = smooth(previous[x], row[x], parameters.thresholds.at(row[x]), parameters.alpha);
    }
  };
  if (height < 2) return;
  for (std::size_t y = 1; y < height; ++y) smooth_row(pixels + y * width, pixels + (y - 1) * width);
  for (std::size_t y = height - 1; y-- > 0;) smooth_row(pixels + y * width, pixels + (y + 1) * width);
}

void spatial_both(std::uint16_t* pixels, std::size_t width, std::size_t height,
                  const SpatialParameters& parameters) {
  spatial_horizontal(pixels, width, height, parameters);
  spatial_vertical(pixels, width, height, parameters);
}

}  // namespace

extern const SpatialKernels spatial = {spatial_horizontal, spatial_vertical, spatial_both};

}  // namespace plain
}  // namespace filterprocessor
