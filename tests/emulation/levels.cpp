#include "support/levels.h"

#include <string_view>

namespace filterprocessor {

bool can_run(const KernelSet& set) {
  // Sets are in the order of their levels, and the one before avx512 is avx2.
  return std::string_view(set.level) == "avx512" ? (&set)[-1].machine_runs() : set.machine_runs();
}

}  // namespace filterprocessor
