#include "report.h"

#include <algorithm>
#include <iomanip>
#include <ostream>

#include "kit/common/text.h"

namespace zvfilter {

using Rows = std::vector<std::vector<std::string>>;

void print_table(const Rows& rows, std::ostream& out) {
  std::vector<std::size_t> widths(rows.front().size());
  for (const auto& row : rows) {
    for (std::size_t i = 0; i < widths.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
  }
  for (const auto& row : rows) {
    for (std::size_t i = 0; i < widths.size(); ++i) {
      const std::string padding(widths[i] - row[i].size(), ' ');
      out << (i == 0 ? row[i] + padding : "  " + padding + row[i]);
    }
    out << '\n';
  }
}

namespace {

std::string rounded(std::optional<double> value, int places, const char* unit = "") {
  return value ? kit::concat(std::fixed, std::setprecision(places), *value, unit) : "-";
}

std::string per_cent(std::optional<double> share) {
  return rounded(share ? std::optional(100 * *share) : share, 2, " %");
}

void print_statistics(const std::vector<kit::FilterStatistics>& statistics, std::ostream& out) {
  Rows rows = {{"filter", "frames", "valid before", "valid after", "changed", "median ms"}};
  for (const kit::FilterStatistics& s : statistics) {
    rows.push_back({s.name, kit::concat(s.frames), kit::concat(s.valid_before),
                    kit::concat(s.valid_after), s.changed ? kit::concat(*s.changed) : "-",
                    rounded(s.median_milliseconds(), 3)});
  }
  print_table(rows, out);
}

void print_accuracy(const kit::ChainResults& results, std::ostream& out) {
  Rows rows = {{"after", "coverage", "median error mm", "p95 error mm", "off > 5 %", "flicker mm"}};
  for (std::size_t i = 0; i < results.accuracy.size(); ++i) {
    const kit::AccuracySummary a = results.accuracy[i].summary();
    rows.push_back({i == 0 ? "(input)" : results.filters[i - 1].name, per_cent(a.coverage),
                    rounded(a.median, 1), rounded(a.percentile95, 1), per_cent(a.off),
                    rounded(a.flicker, 1)});
  }
  print_table(rows, out);
}

void print_steadiness(const kit::Steadiness& steadiness, std::ostream& out) {
  Rows rows = {{"at rest", "pixels used", "flicker mm", "noise mm"}};
  const auto add = [&](const char* name, const kit::SteadinessSummary& side) {
    rows.push_back({name, per_cent(side.used), rounded(side.flicker, 1), rounded(side.noise, 1)});
  };
  add("before", steadiness.before());
  add("after", steadiness.after());
  print_table(rows, out);
}

}  // namespace

void print_results(const kit::ChainResults& results, const kit::Steadiness* steadiness,
                   std::ostream& out) {
  print_statistics(results.filters, out);
  if (!results.accuracy.empty()) {
    out << '\n';
    print_accuracy(results, out);
  }
  if (steadiness != nullptr && steadiness->before().used) {
    out << '\n';
    print_steadiness(*steadiness, out);
  }
}

}  // namespace zvfilter
