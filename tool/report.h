#ifndef ZVFILTER_REPORT_H
#define ZVFILTER_REPORT_H

#include <iosfwd>

#include "kit/measure/steadiness.h"
#include "kit/pipeline/sequence.h"

namespace zvfilter {

/// A table of what the filters did, where the truth is known one of how near it each stage came, and where there are frames
/// enough one of how steady they are.
/// @param steadiness null: not known
void print_results(const kit::ChainResults& results, const kit::Steadiness* steadiness,
                   std::ostream& out);

}  // namespace zvfilter

#endif
