#include "console/console.h"

namespace filterprocessor {

std::FILE* console_output() { return stdout; }
std::FILE* console_errors() { return stderr; }

}  // namespace filterprocessor
