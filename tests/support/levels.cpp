#include "support/levels.h"

namespace filterprocessor {

bool can_run(Level level) { return machine_runs(level); }

}  // namespace filterprocessor
