#include "kit/report/sections.h"

#include <algorithm>

#include "kit/common/text.h"
#include "kit/report/encoding.h"
#include "kit/report/html_text.h"
#include "kit/report/meaning.h"
#include "kit/report/plots.h"

namespace kit {

std::string header_of(const ReportSettings& settings) {
  std::string list;
  for (std::size_t i = 0; i < settings.steps.size(); ++i) {
    const ReportStep& step = settings.steps[i];
    list += concat("<li", step.enabled ? "" : " class=\"off\"", "><a href=\"#step-", i + 1, "\">",
                   escaped(step.filter), "</a></li>");
  }
  return concat("<header><p class=\"kind\">Depth through a chain of filters</p><h1>",
                escaped(settings.input), "</h1><nav aria-label=\"The chain\"><ol>", list,
                "</ol></nav></header>\n");
}

std::string key_figures(const Report& report, const std::vector<StageTotals>& totals) {
  const Ends ends = ends_of(report.last().stages);
  const StageTotals &before = totals[ends.before], &after = totals[ends.after];
  double time = 0;
  const StageTotals* measured = nullptr;  // the last stage that can be compared with the truth
  for (const StageTotals& stage : totals) {
    time += stage.milliseconds;
    if (stage.accuracy.median) measured = &stage;
  }
  const auto entry = [](const char* name, const std::string& value, const std::string& note) {
    return concat("<div><dt>", name, "</dt><dd>", value, "<small>", note, "</small></dd></div>");
  };
  const Frame &first = report.last().stages.front().frame, &last = report.last().stages.back().frame;
  const std::size_t count = report.measures().size();
  std::string out = entry("Frames", concat(count),
                          concat("of ", first.width, "\u202f×\u202f", first.height,
                                 first.width != last.width || first.height != last.height
                                     ? concat(", made ", last.width, "\u202f×\u202f", last.height)
                                     : ""));
  out += entry("Coverage", per_cent_text(before.coverage) + " → " + per_cent_text(after.coverage),
               "valid pixels, mean");
  if (measured != nullptr && before.accuracy.median) {
    out += entry("Median error",
                 length_text(before.accuracy.median) + " → " + length_text(measured->accuracy.median),
                 measured == &after ? "against the true depth" : "up to " + measured->name);
    out += entry("Off by more than 5\u202f%",
                 per_cent_text(before.accuracy.off) + " → " + per_cent_text(measured->accuracy.off),
                 "of the pixels whose depth is known");
  }
  if (measured != nullptr && before.accuracy.flicker)
    out += entry("Flicker",
                 length_text(before.accuracy.flicker) + " → " + length_text(measured->accuracy.flicker),
                 "median change where nothing moved");
  out += entry("Time", fixed_text(time, 2) + "\u202fms", "a frame, all steps");
  return "<dl class=\"figures\">" + out + "</dl>\n";
}

std::string tables_of(const ReportSettings& settings) {
  std::string out;
  for (const ReportTable& table : settings.tables) {
    std::string rows;
    for (const auto& row : table.rows) {
      const bool heading = &row == &table.rows.front();
      std::string cells;
      for (const std::string& cell : row) {
        const bool name = heading || &cell == &row.front();
        const char* const begin = heading ? "<th scope=\"col\">" : name ? "<th scope=\"row\">" : "<td>";
        cells += begin + escaped(cell) + (name ? "</th>" : "</td>");
      }
      rows += concat(heading ? "<thead>" : "", "<tr>", cells, "</tr>", heading ? "</thead><tbody>" : "");
    }
    out += concat("<section><h2>", escaped(table.title), "</h2><div class=\"wide\"><table>", rows,
                  "</tbody></table></div>");
    for (const std::string& sentence : table.sentences) out += concat("<p>", escaped(sentence), "</p>");
    out += "</section>\n";
  }
  return out;
}

std::string comparison(const ReportFrame& frame, const std::string& against) {
  if (!frame.other_measures) return "";
  const StageMeasures &mine = frame.measures.back(), &other = *frame.other_measures;
  const auto row = [](const char* name, const std::string& a, const std::string& b) {
    return concat("<tr><th scope=\"row\">", name, "</th><td>", a, "</td><td>", b, "</td></tr>");
  };
  return concat(
      "<h3>Beside the results in ", escaped(against),
      "</h3><div class=\"wide\"><table><thead><tr><td></td>"
      "<th scope=\"col\">this run</th><th scope=\"col\">the other</th></tr></thead><tbody>",
      row("coverage", per_cent_text(mine.coverage), per_cent_text(other.coverage)),
      row("median error", length_text(mine.accuracy.median), length_text(other.accuracy.median)),
      row("95th percentile", length_text(mine.accuracy.percentile95),
          length_text(other.accuracy.percentile95)),
      row("off by more than 5\u202f%", per_cent_text(mine.accuracy.off),
          per_cent_text(other.accuracy.off)),
      "</tbody></table></div><p class=\"note\">", per_cent_text(other.changed),
      " of the pixels differ between the two.</p>\n");
}

std::string histogram_of(const ReportFrame& frame) {
  constexpr std::size_t kBars = 96;
  const Ends ends = ends_of(frame.stages);
  const Frame &before = frame.stages[ends.before].frame, &after = frame.stages[ends.after].frame;
  const Unit unit(after);
  if (unit != Unit(before)) return "";
  ValueCounts both, old_counts, new_counts;
  both.add(before);
  both.add(after);
  old_counts.add(before);
  new_counts.add(after);
  const Interval range = both.robust_range();
  Interval shown{unit.shown(range.low), unit.shown(range.high)};
  const bool falls = shown.low > shown.high;
  if (falls) std::swap(shown.low, shown.high);
  const auto line = [&](const char* name, const ValueCounts& counts) {
    PlotLine made{"", name, {}};
    for (const double share : counts.shares(range, kBars)) made.values.emplace_back(100 * share);
    if (falls) std::reverse(made.values.begin(), made.values.end());
    return made;
  };
  const Plot plot{
      "Histogram", unit.is_depth() ? "distance, mm" : unit.name(),          "pixels, %",
      shown,       {line("before", old_counts), line("after", new_counts)}, Plot::Values::stretches};
  return concat("<figure class=\"histogram\"><figcaption>Histogram</figcaption>", svg_of(plot),
                "<ul class=\"key\"><li class=\"c0\"><b>before</b></li><li "
                "class=\"c1\"><b>after</b></li></ul></figure>\n");
}

std::string parameters_of(const ReportStep& step) {
  if (step.parameters.empty()) return "<p class=\"note\">It has no parameters.</p>";
  std::string out;
  for (const ReportParameter& p : step.parameters)
    out += concat("<div", p.is_default ? "" : " class=\"set\"", "><dt>", escaped(p.name), "</dt><dd>",
                  escaped(p.value), "</dd></div>");
  return "<dl class=\"parameters\">" + out + "</dl>";
}

std::string facts_of(const StageMeasures& before, const StageMeasures& after) {
  const auto both = [](const std::optional<double>& old, const std::string& old_text,
                       const std::string& text) { return old ? old_text + " → " + text : text; };
  std::string out =
      concat("valid ", per_cent_text(before.coverage), " → ", per_cent_text(after.coverage));
  if (after.changed) out += " · changed " + per_cent_text(after.changed);
  if (after.accuracy.median) {
    out += " · median error " + both(before.accuracy.median, length_text(before.accuracy.median),
                                     length_text(after.accuracy.median));
  }
  return concat("<p class=\"facts\">", out, " · ", fixed_text(after.milliseconds, 2), "\u202fms</p>\n");
}

std::string chain_again(const ReportSettings& settings) {
  const auto bytes = std::span(reinterpret_cast<const unsigned char*>(settings.chain_file.data()),
                               settings.chain_file.size());
  return concat(
      "<section><h2>The chain again</h2>\n<p>The command of this run:</p><pre id=\"command\">",
      escaped(settings.command),
      "</pre>\n<p>The chain as a file: <a download=\"chain.json\" href=\"data:application/json;base64,",
      base64(bytes), "\">chain.json</a></p><pre id=\"chain\">", escaped(settings.chain_file),
      "</pre></section>\n");
}

}  // namespace kit
