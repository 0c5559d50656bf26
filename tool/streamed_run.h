#ifndef ZVFILTER_STREAMED_RUN_H
#define ZVFILTER_STREAMED_RUN_H

#include <iosfwd>

#include "kit/chain/pipeline.h"
#include "kit/pipeline/frame_source.h"
#include "options.h"

namespace zvfilter {

/// What the command line says of files and streams that don't say it themselves.
kit::ReadOptions read_options(const RunOptions& options);

bool is_standard_input(const RunOptions& options);
/// Whether results go to standard output, into stacks or into raw files of the other byte order.
bool is_streamed(const kit::FrameSource& source, const RunOptions& options);

/// Runs the chain on what comes from standard input until that ends, with memory for one frame at a time. Results go to
/// standard output, where nothing else appears then, or into files frame_NNNN.
/// @throws kit::Error
void run_standard_input(kit::Pipeline& pipeline, const RunOptions& options, std::ostream& out,
                        std::ostream& notes);
/// The same on a source's frames, in their order.
void run_streamed(kit::Pipeline& pipeline, const RunOptions& options, const kit::FrameSource& source,
                  std::ostream& out, std::ostream& notes);

}  // namespace zvfilter

#endif
