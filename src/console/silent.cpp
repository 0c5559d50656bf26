#include "console/console.h"

namespace filterprocessor {

std::FILE* console_output() { return nullptr; }
std::FILE* console_errors() { return nullptr; }

}  // namespace filterprocessor
