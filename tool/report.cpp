#include "report.h"

#include <algorithm>
#include <iomanip>
#include <ostream>

#include "table.h"
#include "text.h"

namespace zvfilter {

namespace {

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 != 0 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

void print_statistics(const std::vector<FilterStatistics>& statistics, std::ostream& out) {
  Table table({"filter", "frames", "valid before", "valid after", "changed", "median ms"});
  for (const FilterStatistics& s : statistics) {
    table.add({s.name, concat(s.frames), concat(s.valid_before), concat(s.valid_after),
               s.changed ? concat(*s.changed) : "-",
               concat(std::fixed, std::setprecision(3), median(s.milliseconds))});
  }
  table.print(out);
}

std::string millimetres(std::optional<double> value) {
  return value ? concat(std::fixed, std::setprecision(1), *value) : "-";
}

std::string per_cent(std::optional<double> share) {
  return share ? concat(std::fixed, std::setprecision(2), 100 * *share, " %") : "-";
}

void print_accuracy(const RunResults& results, std::ostream& out) {
  Table table({"after", "coverage", "median error mm", "p95 error mm", "off > 5 %", "flicker mm"});
  for (std::size_t i = 0; i < results.accuracy.size(); ++i) {
    const Accuracy& a = results.accuracy[i];
    table.add({i == 0 ? "(input)" : results.filters[i - 1].name, per_cent(a.coverage()),
               millimetres(a.median()), millimetres(a.percentile95()), per_cent(a.off()),
               millimetres(a.flicker())});
  }
  table.print(out);
}

}  // namespace

void print_results(const RunResults& results, std::ostream& out) {
  print_statistics(results.filters, out);
  if (results.accuracy.empty()) return;
  out << '\n';
  print_accuracy(results, out);
}

}  // namespace zvfilter
