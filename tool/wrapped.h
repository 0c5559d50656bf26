#ifndef ZVFILTER_WRAPPED_H
#define ZVFILTER_WRAPPED_H

#include <iosfwd>
#include <string_view>

namespace zvfilter {

/// Prints words in lines of at most 100 columns.
/// @param first  what the first line begins with; the others are indented as far
void print_wrapped(std::string_view first, std::string_view text, std::ostream& out);

}  // namespace zvfilter

#endif
