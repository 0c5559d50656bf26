// Kernels of one family, FILTERPROCESSOR_CASE, between guard pages: every level does what the plain form
// does.
#include "cases/kernel_cases.h"
#include "target.h"

namespace filterprocessor::fuzz {

void run_input(Source& input) {
  const KernelCase run = FILTERPROCESSOR_CASE(input);
  const auto placements = input.number<std::uint32_t>();
  for (const KernelSet& set : kernel_sets().subspan(1)) {
    if (!set.machine_runs()) continue;
    const std::string found = difference(run, set, placements);
    require(found.empty(), found);
  }
}

}  // namespace filterprocessor::fuzz
