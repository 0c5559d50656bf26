#include "wrapped.h"

#include <ostream>
#include <string>

#include "kit/common/text.h"

namespace zvfilter {

void print_wrapped(std::string_view first, std::string_view text, std::ostream& out) {
  constexpr std::size_t kColumns = 100;
  std::size_t column = first.size();
  bool fresh = true;  // the line has no word yet
  out << first;
  for (const std::string_view word : kit::split(text, ' ')) {
    if (!fresh && column + 1 + word.size() > kColumns) {
      out << '\n' << std::string(first.size(), ' ');
      column = first.size();
      fresh = true;
    }
    if (!fresh) out << ' ';
    out << word;
    column += word.size() + (fresh ? 0 : 1);
    fresh = false;
  }
  out << '\n';
}

}  // namespace zvfilter
