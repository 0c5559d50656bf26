#include "table.h"

#include <algorithm>
#include <ostream>

namespace zvfilter {

void Table::print(std::ostream& out) const {
  std::vector<std::size_t> widths(rows_.front().size());
  for (const auto& row : rows_) {
    for (std::size_t i = 0; i < widths.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
  }
  for (const auto& row : rows_) {
    for (std::size_t i = 0; i < widths.size(); ++i) {
      const std::string padding(widths[i] - row[i].size(), ' ');
      out << (i == 0 ? row[i] + padding : "  " + padding + row[i]);
    }
    out << '\n';
  }
}

}  // namespace zvfilter
