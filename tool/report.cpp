#include "report.h"

#include <iomanip>
#include <ostream>

#include "kit/common/text.h"
#include "table.h"

namespace zvfilter {

namespace {

std::string rounded(std::optional<double> value, int places, const char* unit = "") {
  return value ? kit::concat(std::fixed, std::setprecision(places), *value, unit) : "-";
}

std::string per_cent(std::optional<double> share) {
  return rounded(share ? std::optional(100 * *share) : share, 2, " %");
}

void print_statistics(const std::vector<kit::FilterStatistics>& statistics, std::ostream& out) {
  Table table({"filter", "frames", "valid before", "valid after", "changed", "median ms"});
  for (const kit::FilterStatistics& s : statistics) {
    table.add({s.name, kit::concat(s.frames), kit::concat(s.valid_before), kit::concat(s.valid_after),
               s.changed ? kit::concat(*s.changed) : "-", rounded(s.median_milliseconds(), 3)});
  }
  table.print(out);
}

void print_accuracy(const kit::ChainResults& results, std::ostream& out) {
  Table table({"after", "coverage", "median error mm", "p95 error mm", "off > 5 %", "flicker mm"});
  for (std::size_t i = 0; i < results.accuracy.size(); ++i) {
    const kit::AccuracySummary a = results.accuracy[i].summary();
    table.add({i == 0 ? "(input)" : results.filters[i - 1].name, per_cent(a.coverage),
               rounded(a.median, 1), rounded(a.percentile95, 1), per_cent(a.off), rounded(a.flicker, 1)});
  }
  table.print(out);
}

}  // namespace

void print_results(const kit::ChainResults& results, std::ostream& out) {
  print_statistics(results.filters, out);
  if (results.accuracy.empty()) return;
  out << '\n';
  print_accuracy(results, out);
}

}  // namespace zvfilter
