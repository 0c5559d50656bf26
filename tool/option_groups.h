#ifndef ZVFILTER_OPTION_GROUPS_H
#define ZVFILTER_OPTION_GROUPS_H

#include <functional>
#include <string>

#include <CLI/CLI.hpp>

#include "options.h"

namespace zvfilter {

/// Refuses texts and says what is expected instead. The text in --help stays that of type_name().
CLI::Validator expect(const std::string& what, std::function<bool(const std::string& text)> holds);

const CLI::Validator& positive();
/// --set
void add_settings(CLI::App& command, std::vector<std::string>& settings);

/// Options that several commands have: the chain,
void describe_chain(CLI::App& command, RunOptions& run);
/// what goes in and what it is,
void describe_sequence(CLI::App& command, RunOptions& run);
/// and who works on it.
void describe_jobs(CLI::App& command, RunOptions& run);

}  // namespace zvfilter

#endif
