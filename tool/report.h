#ifndef ZVFILTER_REPORT_H
#define ZVFILTER_REPORT_H

#include <iosfwd>
#include <string>
#include <vector>

#include "kit/measure/steadiness.h"
#include "kit/pipeline/sequence.h"

namespace zvfilter {

/// Aligned columns under a heading, which is the first row: the first to the left, the others to the right.
void print_table(const std::vector<std::vector<std::string>>& rows, std::ostream& out);

/// A table of what the filters did, where the truth is known one of how near it each stage came, and where there are frames
/// enough one of how steady they are.
/// @param steadiness null: not known
void print_results(const kit::ChainResults& results, const kit::Steadiness* steadiness,
                   std::ostream& out);

}  // namespace zvfilter

#endif
