#include <algorithm>

#include "kernels/hole_filling/hole_filling.h"

namespace filterprocessor::plain {

namespace {
constexpr std::uint16_t kNone = 65535;
std::uint16_t none_if_zero(std::uint16_t value) { return value == 0 ? kNone : value; }
std::uint16_t zero_if_none(std::uint16_t value) { return value == kNone ? 0 : value; }
void fill_top(std::uint16_t* pixels, std::size_t width, std::size_t height) {
  for (std::size_t y = 1; y < height; ++y) {
    std::uint16_t* row = pixels + y * width;
    const std::uint16_t* above = row - width;
    for (std::size_t x = 0; x < width; ++x) {
      if (row[x] == 0) row[x] = above[x];
    }
  }
}

void fill_smaller(std::uint16_t* pixels, std::size_t width, std::size_t height) {
  for (std::size_t y = 1; y + 1 < height; ++y) {
    std::uint16_t* row = pixels + y * width;
    const std::uint16_t* above = row - width;
    const std::uint16_t* below = row + width;
    std::uint16_t left = kNone;
    for (std::size_t x = 0; x < width; ++x) {
      std::uint16_t value = none_if_zero(row[x]);
      if (value == kNone) {
        value =
            x % kHoleGroup == 0 ? left : std::min({none_if_zero(above[x]), none_if_zero(below[x]), left});
      }
      row[x] = zero_if_none(value);
      left = value;
    }
  }
}

void fill_larger(std::uint16_t* pixels, std::size_t width, std::size_t height) {
  for (std::size_t y = 1; y + 1 < height; ++y) {
    std::uint16_t* row = pixels + y * width;
    const std::uint16_t* above = row - width;
    const std::uint16_t* below = row + width;
    std::uint16_t left = 0;
    for (std::size_t x = 0; x < width; ++x) {
      if (row[x] == 0) row[x] = x % kHoleGroup == 0 ? left : std::max({above[x], below[x], left});
      left = row[x];
    }
  }
}

}  // namespace

extern const HoleFillingKernels hole_filling = {fill_top, fill_smaller, fill_larger};

}  // namespace filterprocessor::plain
