#include "support/levels.h"

namespace filterprocessor {

bool can_run(Level level) { return machine_runs(level == Level::avx512 ? Level::avx2 : level); }

}  // namespace filterprocessor
