#ifndef FILTERPROCESSOR_KERNELS_HOLE_FILLING_HOLE_FILLING_H
#define FILTERPROCESSOR_KERNELS_HOLE_FILLING_HOLE_FILLING_H

#include <cstddef>
#include <cstdint>

namespace filterprocessor {

/// Hole filling at one level; see depth_api_hole_filling_filter() for the rules. All work in place on
/// `width` x `height` pixels and read or write nothing else.
struct HoleFillingKernels {
  using Fill = void(std::uint16_t* pixels, std::size_t width, std::size_t height);

  Fill* top;
  Fill* smaller;
  Fill* larger;
};

/// Pixels that are filled together; the first of each group takes the pixel to its left alone.
inline constexpr std::size_t kHoleGroup = 8;

namespace plain {
extern const HoleFillingKernels hole_filling;
}

}  // namespace filterprocessor

#endif
