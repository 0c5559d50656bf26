#ifndef KIT_CHAIN_CHAIN_H
#define KIT_CHAIN_CHAIN_H

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kit {

/// Texts by the names of parameters; those not named have their schema defaults.
using Values = std::map<std::string, std::string>;

/// A filter of a chain.
struct Step {
  std::string filter;
  std::optional<Values> values = std::nullopt;  ///< nothing: the filter is left as it is made
  bool enabled = true;
  std::string tag = {};
};
using Chain = std::vector<Step>;

/// key=value,key=value; may be empty.
/// @throws Error for a text of another form or a key given twice
Values parse_values(std::string_view text);

/// [TAG=]NAME, NAME: or NAME:key=value,...; NAME alone has no values, NAME: none that differs from its default.
/// @throws Error as parse_values()
Step parse_step(std::string_view text);
/// The reverse.
/// @throws Error for a step that is off, which such a text cannot say
std::string step_text(const Step& step);

/// The number, from 0, of the step with this tag; else of the only one of this filter; else the one with this number from 1.
std::optional<std::size_t> find_step(const Chain& chain, std::string_view name);

/// "step 2 (smooth)": what messages call a step.
std::string step_name(const Chain& chain, std::size_t step);

/// A chain's steps all have a filter's name, and no two the same tag, none that could be taken for something else.
/// @throws Error
void check_tags(const Chain& chain);

}  // namespace kit

#endif
