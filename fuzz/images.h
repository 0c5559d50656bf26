/// Images with what kernels and filters treat specially, made from few bytes.
#ifndef FILTERPROCESSOR_FUZZ_IMAGES_H
#define FILTERPROCESSOR_FUZZ_IMAGES_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "fuzz_input.h"

namespace filterprocessor::fuzz {

using Pixels = std::vector<std::uint16_t>;

struct Sides {
  std::size_t width, height;
  std::size_t area() const { return width * height; }
};

/// Mostly 1 to 96 each, now and then narrow or large; never below `smallest`.
Sides any_sides(FuzzInput& input, std::size_t smallest = 1);

/// Noise, steps, ramps, blobs or the input's own bytes, with a share of pixels that are `invalid`.
Pixels any_pixels(FuzzInput& input, const Sides& sides, std::uint16_t invalid = 0);

/// Entries up to one of a few largest values.
Pixels any_table(FuzzInput& input, std::size_t size);

}  // namespace filterprocessor::fuzz

#endif
