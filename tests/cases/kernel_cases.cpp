#include "cases/kernel_cases.h"

namespace filterprocessor {

std::string difference(const KernelCase& run, const KernelSet& level, std::uint32_t placements) {
  Buffers expected(placements);
  run(kernel_sets().front(), expected);
  Buffers actual(placements);
  run(level, actual);
  const std::string found = actual.difference_from(expected);
  return found.empty() ? found : level.level + (" " + found);
}

}  // namespace filterprocessor
