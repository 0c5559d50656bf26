/// Images with what kernels and filters treat specially, made from few choices.
#ifndef FILTERPROCESSOR_TESTS_CASES_IMAGES_H
#define FILTERPROCESSOR_TESTS_CASES_IMAGES_H

#include <vector>

#include "cases/source.h"

namespace filterprocessor {

using Pixels = std::vector<std::uint16_t>;

struct Sides {
  std::size_t width, height;
  std::size_t area() const { return width * height; }
};

/// Mostly 1 to 96 each, now and then narrow or large; never below `smallest`.
Sides any_sides(Source& source, std::size_t smallest = 1);

/// Noise, few values, steps, ramps, blobs, scenes, numbers at the ends of ranges or the source's own bytes,
/// with a share of pixels that are `invalid`, alone or in runs.
Pixels any_pixels(Source& source, const Sides& sides, std::uint16_t invalid = 0);

/// Entries up to one of a few largest values.
Pixels any_table(Source& source, std::size_t size);

}  // namespace filterprocessor

#endif
