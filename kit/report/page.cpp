#include "kit/report/page.h"

#include <memory>

#include "kit/common/text.h"
#include "kit/report/figures.h"
#include "kit/report/html_text.h"
#include "kit/report/sections.h"
#include "kit/report/sequence.h"
#include "report_files.h"

namespace kit {

namespace {

/// What a page holds beside its texts and plots.
struct Details {
  std::size_t others;  ///< frames shown beside the last
  PixelData other_data;
  bool other_steps;
  bool steps;
  PixelData step_data;
  PixelData data;
};

/// From the fullest page to the smallest; what is worth least goes first.
std::vector<Details> choices(std::size_t others) {
  using enum PixelData;
  std::vector<Details> result = {{others, exact, true, true, exact, exact},
                                 {others, exact, false, true, exact, exact},
                                 {others, none, false, true, exact, exact}};
  for (std::size_t fewer = others; fewer-- > 0;)
    result.push_back({fewer, none, false, true, exact, exact});
  result.push_back({0, none, false, true, none, exact});
  result.push_back({0, none, false, false, none, exact});
  result.push_back({0, none, false, false, none, none});
  return result;
}

std::string left_out(const Details& details, std::size_t others, std::size_t most_bytes) {
  std::vector<std::string> parts;
  if (details.others < others) parts.push_back(concat(others - details.others, " of the other frames"));
  if (details.others > 0 && !details.other_steps) parts.push_back("the steps of the other frames");
  if (details.others > 0 && details.other_data == PixelData::none)
    parts.push_back("the exact pixels of the other frames");
  if (!details.steps) parts.push_back("the pictures of the steps");
  if (details.steps && details.step_data == PixelData::none)
    parts.push_back("the exact pixels of the steps");
  if (details.data == PixelData::none) parts.push_back("all exact pixels");
  if (parts.empty()) return "";
  return concat("<p class=\"note\">Left out, to stay under ", most_bytes / 1'000'000,
                "\u202fMB: ", join(parts, ", "), ".</p>\n");
}

class Page {
 public:
  explicit Page(const Report& report)
      : report_(report),
        settings_(report.settings()),
        totals_(totals_of(report)),
        figures_(make_figures()) {
    for (const auto& [index, frame] : report.shown()) sides_[index] = sides_of(frame);
  }

  std::string text(const Details& details) {
    const std::size_t others = report_.shown().size() - 1;
    std::string body = header_of(settings_) + key_figures(report_, totals_) + tables_of(settings_) +
                       hero(details) + steps(details) + sequence() + other_frames(details) +
                       chain_again(settings_) + left_out(details, others, settings_.most_bytes);
    const auto fill = [](std::string text, const std::string& name, const std::string& value) {
      const std::string mark = "{{" + name + "}}";
      return text.replace(text.find(mark), mark.size(), value);
    };
    std::string page(report_files::page_html);
    page = fill(std::move(page), "title", escaped(settings_.input));
    page = fill(std::move(page), "style",
                concat(report_files::base_css, figure_styles(), report_files::page_css));
    page = fill(std::move(page), "script", std::string(report_files::page_js));
    page = fill(std::move(page), "settings", figure_settings());
    page = fill(std::move(page), "data", figures_.take_data());
    return fill(std::move(page), "body", body);
  }

 private:
  struct Sides {
    std::vector<std::unique_ptr<Side>> stages;
    std::unique_ptr<Side> other;
  };

  Figures make_figures() const {
    ValueCounts depth, disparity;
    for (const auto& [index, frame] : report_.shown()) {
      const Ends ends = ends_of(frame.stages);
      for (const std::size_t stage : {ends.before, ends.after, std::size_t{0}}) {
        const Frame& shown = frame.stages[stage].frame;
        (Unit(shown).is_depth() ? depth : disparity).add(shown);
      }
    }
    return {depth.robust_range(), disparity.robust_range()};
  }

  Sides sides_of(const ReportFrame& frame) const {
    Sides sides;
    const Side* base = nullptr;
    for (const ReportStage& stage : frame.stages) {
      const std::string caption =
          stage.number == 0 ? "the input" : "after " + stage_name(report_, stage.number);
      sides.stages.push_back(std::make_unique<Side>(
          Side{&stage.frame, concat('p', frame.index, '-', stage.number), caption, base}));
      base = sides.stages.back().get();
    }
    if (frame.other)
      sides.other = std::make_unique<Side>(
          Side{&frame.other->frame, concat('p', frame.index, "-other"), "the other run", base});
    return sides;
  }

  /// The whole chain on one frame: the pair, and what stands beside it.
  std::string ends(const ReportFrame& frame, PixelData data, const std::string& further) {
    const Sides& sides = sides_.at(frame.index);
    const Ends at = ends_of(frame.stages);
    const Side &before = *sides.stages[at.before], &after = *sides.stages[at.after];
    std::string beside = figures_.difference(before, after, "after − before");
    const std::string pair = figures_.pair(before, after, data);
    if (sides.other) {
      beside += figures_.single(*sides.other, data) +
                figures_.difference(*sides.other, after, "this run − the other");
    }
    return concat("<div class=\"row\">", pair, "<div class=\"beside\">", beside, further,
                  "</div></div>\n");
  }

  std::string hero(const Details& details) {
    const ReportFrame& frame = report_.last();
    const Frame& first = frame.stages.front().frame;
    return concat("<section class=\"hero\" style=\"--wide:",
                  fixed_text(static_cast<double>(first.width) / first.height, 3),
                  "\"><h2>Before and after <small>frame ", frame.index, ", the last</small></h2>\n",
                  ends(frame, details.data, histogram_of(frame)), comparison(frame, settings_.against),
                  "</section>\n");
  }

  std::string step_figures(const ReportFrame& frame, std::size_t stage, PixelData data) {
    const Sides& sides = sides_.at(frame.index);
    const Side &before = *sides.stages[stage - 1], &after = *sides.stages[stage];
    const std::string difference = figures_.difference(before, after, "what it changed");
    return concat("<div class=\"row\">", figures_.pair(before, after, data),
                  difference.empty()
                      ? "<p class=\"note\">Other shapes or units: pixels cannot be subtracted.</p>"
                      : difference,
                  "</div>\n");
  }

  std::string steps(const Details& details) {
    const ReportFrame& frame = report_.last();
    std::string out =
        concat("<section><h2>Step by step <small>frame ", frame.index,
               "; the table is of all frames</small></h2>\n", totals_table(report_, totals_));
    for (std::size_t i = 0; i < settings_.steps.size(); ++i) {
      const ReportStep& step = settings_.steps[i];
      out += concat("<section class=\"step\" id=\"step-", i + 1, "\"><h3><span class=\"number\">", i + 1,
                    "</span> ", escaped(step.filter),
                    step.tag.empty() ? "" : " <small>" + escaped(step.tag) + "</small>", "</h3>\n");
      if (!step.enabled) out += "<p class=\"note\">Switched off.</p>";
      for (std::size_t stage = 1; stage < frame.stages.size(); ++stage) {
        if (frame.stages[stage].number != i + 1) continue;
        out += facts_of(frame.measures[stage - 1], frame.measures[stage]);
        out += parameters_of(step);
        if (details.steps) out += step_figures(frame, stage, details.step_data);
      }
      out += "</section>\n";
    }
    return out + "</section>\n";
  }

  std::string sequence() const {
    const std::string plots = sequence_plots(report_);
    if (plots.empty()) return "";
    return "<section><h2>The sequence</h2>\n" + plots + "</section>\n";
  }

  std::string other_frames(const Details& details) {
    std::string out;
    std::size_t room = details.others;
    for (const auto& [index, frame] : report_.shown()) {
      if (index == report_.last().index || room == 0) continue;
      --room;
      out += concat("<section class=\"step\"><h3>Frame ", index, " <small>", escaped(frame.label),
                    index == report_.indexes().front() ? ", the first" : "",
                    index == report_.most_changed() ? ", changed most" : "", "</small></h3>\n",
                    ends(frame, details.other_data, ""));
      if (details.other_steps) {
        out += "<details><summary>Step by step</summary>\n";
        for (std::size_t stage = 1; stage < frame.stages.size(); ++stage)
          out += concat("<h4>", stage_name(report_, frame.stages[stage].number), "</h4>",
                        step_figures(frame, stage, details.other_data));
        out += "</details>\n";
      }
      out += "</section>\n";
    }
    return out.empty() ? "" : "<section><h2>Other frames</h2>\n" + out + "</section>\n";
  }

  const Report& report_;
  const ReportSettings& settings_;
  std::vector<StageTotals> totals_;
  Figures figures_;
  std::map<std::size_t, Sides> sides_;
};

}  // namespace

std::string page_of(const Report& report) {
  Page page(report);
  std::string text;
  for (const Details& details : choices(report.shown().size() - 1)) {
    text = page.text(details);
    if (text.size() <= report.settings().most_bytes) break;
  }
  return text;
}

}  // namespace kit
