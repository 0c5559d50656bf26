// Hole filling by its three rules.
#include "images.h"
#include "levels.h"

namespace filterprocessor::fuzz {

void run_input(FuzzInput& input) {
  const auto rule =
      input.pick({&HoleFillingKernels::top, &HoleFillingKernels::smaller, &HoleFillingKernels::larger});
  const Sides sides = any_sides(input);
  const Pixels pixels = any_pixels(input, sides);
  compare_levels(input, [&](const KernelSet& kernels, Buffers& buffers) {
    (kernels.hole_filling.*rule)(buffers.copy(pixels), sides.width, sides.height);
  });
}

}  // namespace filterprocessor::fuzz
