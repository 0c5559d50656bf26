#include "kit/report/sequence.h"

#include <algorithm>
#include <functional>

#include "kit/common/text.h"
#include "kit/report/html_text.h"
#include "kit/report/plots.h"

namespace kit {

namespace {

using MeasureOf = std::function<std::optional<double>(const StageMeasures&)>;

/// Of a stage, frame after frame.
std::vector<std::optional<double>> series(const Report& report, std::size_t stage,
                                          const MeasureOf& measure) {
  std::vector<std::optional<double>> values;
  for (const auto& frame : report.measures()) values.push_back(measure(frame[stage]));
  return values;
}

std::vector<double> known(const std::vector<std::optional<double>>& values) {
  std::vector<double> result;
  for (const auto& value : values) {
    if (value) result.push_back(*value);
  }
  return result;
}

std::optional<double> mean(const std::vector<std::optional<double>>& values) {
  const std::vector<double> all = known(values);
  if (all.empty()) return std::nullopt;
  double sum = 0;
  for (const double value : all) sum += value;
  return sum / static_cast<double>(all.size());
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 != 0 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

std::optional<double> coverage(const StageMeasures& m) { return m.coverage; }
std::optional<double> changed(const StageMeasures& m) { return m.changed; }
std::optional<double> milliseconds(const StageMeasures& m) { return m.milliseconds; }
std::optional<double> error(const StageMeasures& m) { return m.accuracy.median; }

std::optional<double> per_cent(std::optional<double> share) {
  return share ? std::optional(100 * *share) : share;
}

}  // namespace

std::string stage_name(const Report& report, std::size_t number) {
  return number == 0 ? "the input" : report.settings().steps[number - 1].filter;
}

std::vector<StageTotals> totals_of(const Report& report) {
  std::vector<StageTotals> totals;
  const auto& stages = report.last().measures;
  for (std::size_t i = 0; i < stages.size(); ++i) {
    StageTotals stage{stages[i].number, stage_name(report, stages[i].number)};
    stage.coverage = mean(series(report, i, coverage)).value_or(0);
    stage.changed = mean(series(report, i, changed));
    stage.milliseconds = median(known(series(report, i, milliseconds)));
    if (stage.number < report.accuracy().size()) stage.accuracy = report.accuracy()[stage.number];
    totals.push_back(std::move(stage));
  }
  return totals;
}

std::string totals_table(const Report& report, const std::vector<StageTotals>& totals) {
  const bool with_truth = !report.accuracy().empty();
  const auto row = [&](const std::string& number, const std::string& name, const StageTotals& t,
                       bool is_step) {
    std::string out = concat("<tr><td>", number, "</td><th scope=\"row\">", name, "</th>");
    const auto cell = [&](const std::string& text) { out += "<td>" + text + "</td>"; };
    cell(per_cent_text(t.coverage));
    cell(per_cent_text(t.changed));
    cell(is_step ? fixed_text(t.milliseconds, 2) + "\u202fms" : "–");
    if (with_truth) {
      cell(length_text(t.accuracy.median));
      cell(length_text(t.accuracy.percentile95));
      cell(per_cent_text(t.accuracy.off));
      cell(length_text(t.accuracy.flicker));
    }
    return out + "</tr>\n";
  };
  std::string rows;
  for (const StageTotals& t : totals) {
    const bool is_step = t.number > 0;
    const std::string link = concat("<a href=\"#step-", t.number, "\">", escaped(t.name), "</a>");
    rows += row(is_step ? concat(t.number) : "", is_step ? link : "The input", t, is_step);
  }
  if (report.last().other_measures) {
    StageTotals other{0, ""};
    other.coverage = report.last().other_measures->coverage;
    other.changed = report.last().other_measures->changed;
    if (report.other_accuracy()) other.accuracy = report.other_accuracy()->summary();
    rows += row("", "The other run", other, false);
  }
  return concat(
      "<div class=\"wide\"><table><thead><tr><td></td><th scope=\"col\">after</th>"
      "<th scope=\"col\">coverage</th><th scope=\"col\">changed</th><th scope=\"col\">time</th>",
      with_truth ? "<th scope=\"col\">median error</th><th scope=\"col\">95th percentile</th>"
                   "<th scope=\"col\">off by &gt; 5\u202f%</th><th scope=\"col\">flicker</th>"
                 : "",
      "</tr></thead><tbody>\n", rows, "</tbody></table></div>\n");
}

std::string sequence_plots(const Report& report) {
  if (report.measures().size() < 2) return "";
  const auto& stages = report.last().measures;
  const auto plot = [&](const char* title, const char* unit, std::size_t from, const MeasureOf& measure,
                        Plot::Values values) {
    Plot made{title, "frame", unit, {}, {}, values};
    made.x = {static_cast<double>(report.indexes().front()),
              static_cast<double>(report.indexes().back())};
    for (std::size_t i = 0; i < stages.size(); ++i) {
      const std::size_t number = stages[i].number;
      // Colours go by line, so what is left out leaves its place.
      made.lines.push_back(
          {number == 0 ? "in" : concat(number), stage_name(report, number),
           i >= from ? series(report, i, measure) : std::vector<std::optional<double>>{}});
      if (known(made.lines.back().values).empty()) made.lines.back().values.clear();
    }
    return concat("<figure><figcaption>", title, "</figcaption>", svg_of(made), "</figure>\n");
  };
  std::string out = "<div class=\"plots\">\n";
  out += plot(
      "Coverage", "valid pixels, %", 0, [](const auto& m) { return per_cent(coverage(m)); },
      Plot::Values::around);
  out += plot(
      "Changed by each step", "pixels, %", 1, [](const auto& m) { return per_cent(changed(m)); },
      Plot::Values::from_zero);
  out += plot("Time of each step", "ms", 1, milliseconds, Plot::Values::robust);
  if (!report.accuracy().empty()) out += plot("Median error", "mm", 0, error, Plot::Values::from_zero);
  out += "</div>\n<ul class=\"key\">";
  for (std::size_t i = 0; i < stages.size(); ++i) {
    const std::size_t number = stages[i].number;
    out += concat("<li class=\"c", i, "\"><b>", number == 0 ? "in" : concat(number), "</b> ",
                  number == 0 ? "input" : escaped(stage_name(report, number)), "</li>");
  }
  return out + "</ul>\n";
}

}  // namespace kit
