#ifndef ZVFILTER_TABLE_H
#define ZVFILTER_TABLE_H

#include <iosfwd>
#include <string>
#include <vector>

namespace zvfilter {

/// Rows of texts in aligned columns under a heading: the first column to the left, the others to the
/// right.
class Table {
 public:
  explicit Table(std::vector<std::string> heading) : rows_{std::move(heading)} {}
  /// @param cells as many as the heading has
  void add(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }
  void print(std::ostream& out) const;

 private:
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace zvfilter

#endif
