#ifndef FILTERPROCESSOR_FUZZ_ARGUMENTS_H
#define FILTERPROCESSOR_FUZZ_ARGUMENTS_H

#include <string>
#include <vector>

#include "cases/source.h"
#include "kit/schema/schema.h"

namespace filterprocessor::fuzz {

/// Texts for a filter's parameters: mostly all of them in range, otherwise some that are not, and now and
/// then some too many or too few.
std::vector<std::string> any_arguments(Source& input,
                                       const std::vector<kit::SchemaParameter>& parameters);

}  // namespace filterprocessor::fuzz

#endif
