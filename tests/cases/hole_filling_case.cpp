#include "cases/kernel_cases.h"

namespace filterprocessor {

KernelCase hole_filling_case(Source& source) {
  const auto rule =
      source.pick({&HoleFillingKernels::top, &HoleFillingKernels::smaller, &HoleFillingKernels::larger});
  const Sides sides = any_sides(source);
  const Pixels pixels = any_pixels(source, sides);
  return [=](const KernelSet& kernels, Buffers& buffers) {
    (kernels.hole_filling.*rule)(buffers.copy(pixels), sides.width, sides.height);
  };
}

}  // namespace filterprocessor
