#ifndef ZVFILTER_COMMANDS_H
#define ZVFILTER_COMMANDS_H

#include <iosfwd>
#include <stdexcept>

#include "kit/chain/chain_file.h"
#include "kit/filter/filter_library.h"
#include "options.h"

namespace zvfilter {

/// A run that was asked to end, and did after whole frames.
struct Stopped : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Each command throws kit::Error.
void list_command(const kit::FilterLibrary& library, bool json, std::ostream& out);
void schema_command(const kit::FilterLibrary& library, const std::string& filter, std::ostream& out);
/// @param filter  empty: all filters in a line each
void help_command(const kit::FilterLibrary& library, const std::string& filter, std::ostream& out);
/// @param name  empty: all presets; otherwise the chain file of this one
void presets_command(const std::string& name, std::ostream& out);
/// @param notes takes warnings and notes, one line each, beginning with "zvfilter: "
/// @throws Stopped
void run_command(const kit::FilterLibrary& library, RunOptions options, std::ostream& out,
                 std::ostream& notes);
void bench_command(const kit::FilterLibrary& library, RunOptions options, std::ostream& out);
/// Serves the tuner's page until it is interrupted, and ends the program then.
[[noreturn]] void tune_command(const kit::FilterLibrary& library, TuneOptions options, std::ostream& out,
                               std::ostream& notes);
/// @throws Stopped when it was asked to end, once the best so far is written
void advise_command(const kit::FilterLibrary& library, AdviseOptions options, std::ostream& out,
                    std::ostream& notes);
using kit::read_chain;
/// Changes what TAG.key=value names.
void override_values(kit::Chain& chain, const std::vector<std::string>& settings);
void chain_check_command(const kit::FilterLibrary& library, const std::vector<std::string>& chains,
                         std::ostream& out);
void chain_show_command(const kit::FilterLibrary& library, const std::string& source, std::ostream& out);
void chain_convert_command(const kit::FilterLibrary& library, const ChainConvertOptions& options,
                           std::ostream& out);
void chain_schema_command(const kit::FilterLibrary& library, std::ostream& out);
void camera_command(const CameraCommandOptions& options, std::ostream& out);

}  // namespace zvfilter

#endif
