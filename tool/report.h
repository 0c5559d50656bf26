#ifndef ZVFILTER_REPORT_H
#define ZVFILTER_REPORT_H

#include <iosfwd>

#include "kit/pipeline/sequence.h"

namespace zvfilter {

/// A table of what the filters did and, where the truth is known, one of how near it each stage came.
void print_results(const kit::ChainResults& results, std::ostream& out);

}  // namespace zvfilter

#endif
