#ifndef ZVFILTER_RUN_RECORD_H
#define ZVFILTER_RUN_RECORD_H

#include <string>

#include "run_setup.h"

namespace zvfilter {

/// The file beside a sequence's results that says what made them.
inline constexpr const char* kRecordFile = ".zvfilter.json";

/// What the results depend on, as a JSON text: the chain, the inputs and what is said of them.
std::string run_record(const RunOptions& options, const kit::Chain& chain, const Sequence& sequence);

/// @throws kit::Error when the results in the folder are not those of such a run
void expect_same_run(const std::filesystem::path& folder, const std::string& record);

}  // namespace zvfilter

#endif
