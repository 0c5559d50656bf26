#ifndef KIT_COMMON_SUGGESTIONS_H
#define KIT_COMMON_SUGGESTIONS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kit {

/// Insertions, deletions and replacements of one character that turn one text into the other.
std::size_t edit_distance(std::string_view a, std::string_view b);

/// What to write instead of the unknown `text`: "did you mean A or B?" with the nearest candidates,
/// letter case apart, or "known: A, B, C" when none is near.
std::string suggest(std::string_view text, const std::vector<std::string>& candidates);

}  // namespace kit

#endif
