/// What every fuzz target is made of: it defines run_input() and is linked to target.cpp.
#ifndef FILTERPROCESSOR_FUZZ_TARGET_H
#define FILTERPROCESSOR_FUZZ_TARGET_H

#include <string_view>

#include "fuzz_input.h"

namespace filterprocessor::fuzz {

/// Runs one input; returns unless something is wrong.
void run_input(FuzzInput& input);

/// Ends the run with `what` unless `holds`.
void require(bool holds, std::string_view what);

}  // namespace filterprocessor::fuzz

#endif
