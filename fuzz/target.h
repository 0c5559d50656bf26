/// What every fuzz target is made of: it defines run_input() and is linked to target.cpp.
#ifndef FILTERPROCESSOR_FUZZ_TARGET_H
#define FILTERPROCESSOR_FUZZ_TARGET_H

#include <string_view>

#include "cases/source.h"

namespace filterprocessor::fuzz {

/// Runs one input; returns unless something is wrong.
void run_input(Source& input);

/// Ends the run with `what` unless `holds`.
void require(bool holds, std::string_view what);

}  // namespace filterprocessor::fuzz

#endif
