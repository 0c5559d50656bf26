#include "support/levels.h"

namespace filterprocessor {

bool can_run(const KernelSet& set) { return set.machine_runs(); }

}  // namespace filterprocessor
