#ifndef FILTERPROCESSOR_FILTERS_SIZE_RATIO_H
#define FILTERPROCESSOR_FILTERS_SIZE_RATIO_H

#include <cstdint>

namespace filterprocessor {

/// How a frame's size stands to the size that a filter's parameters are given for.
struct SizeRatio {
  float x, y;

  SizeRatio(std::uint64_t width, std::uint64_t height, std::uint64_t given_width,
            std::uint64_t given_height)
      : x(static_cast<float>(width) / static_cast<float>(given_width)),
        y(static_cast<float>(height) / static_cast<float>(given_height)) {}

  bool too_small() const {
    constexpr double kLeast = 0.00001;
    return double{x} < kLeast || double{y} < kLeast || double{x * y} < kLeast;
  }
};

}  // namespace filterprocessor

#endif
