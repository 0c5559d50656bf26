#ifndef ZVFILTER_OPTION_GROUPS_H
#define ZVFILTER_OPTION_GROUPS_H

#include <functional>
#include <string>

#include <CLI/CLI.hpp>

#include "options.h"

namespace zvfilter {

/// Refuses texts and says what is expected instead. The text in --help stays that of type_name().
CLI::Validator expect(const std::string& what, std::function<bool(const std::string& text)> holds);

/// Options that several commands have: the chain,
void describe_chain(CLI::App& command, RunOptions& run);
/// the names of what goes in,
void describe_input_names(CLI::App& command, RunOptions& run);
/// what the frames are, and who works on them.
void describe_source(CLI::App& command, RunOptions& run);

}  // namespace zvfilter

#endif
