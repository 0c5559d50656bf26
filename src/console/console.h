#ifndef FILTERPROCESSOR_CONSOLE_CONSOLE_H
#define FILTERPROCESSOR_CONSOLE_CONSOLE_H

#include <cstdio>

namespace filterprocessor {

/// Where the library writes what the user of its process is to read; null where nobody is to be told. A plug-in says it on the
/// standard streams (standard.cpp); a library that tells its caller everything says nothing (silent.cpp).
std::FILE* console_output();
std::FILE* console_errors();

}  // namespace filterprocessor

#endif
