#ifndef KIT_CHAIN_CHAIN_FILE_H
#define KIT_CHAIN_CHAIN_FILE_H

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kit/chain/chain.h"
#include "kit/filter/filter_description.h"
#include "kit/input/input.h"

namespace kit {

/// What a chain file says.
struct ChainFile {
  std::string description;
  std::optional<Input> input;
  Chain steps;
};

/// Reads a chain: the JSON of a chain file, or steps as parse_step() takes them, one a line or with semicolons between them.
/// Whether filters, keys and ranges are right is for a Pipeline to say.
/// @param label of the text in messages
/// @throws Error naming the step or field that is wrong and what it may be
ChainFile parse_chain(std::string_view text, const std::string& label);
ChainFile read_chain_file(const std::filesystem::path& file);
/// Whether people name a file with a chain here, which has a dot or a slash, not its text.
bool is_chain_file(const std::string& source);
/// A chain as people give it: the name of a file with one or its text.
ChainFile read_chain(const std::string& source);

std::string chain_json(const ChainFile& chain);

/// The JSON Schema of chain files with these filters.
std::string chain_file_schema(const std::vector<FilterDescription>& filters);

}  // namespace kit

#endif
