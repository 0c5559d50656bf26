#include "kit/report/plots.h"

#include <algorithm>
#include <cmath>

#include "kit/common/text.h"
#include "kit/report/html_text.h"

namespace kit {

namespace {

constexpr double kWidth = 480, kHeight = 270;
constexpr double kLeft = 52, kRight = 452, kTop = 14, kBottom = 222;
constexpr double kLabelHeight = 13;

class Drawing {
 public:
  explicit Drawing(const Plot& plot) : plot_(plot), x_(plot.x) {
    if (x_.high <= x_.low) x_.high = x_.low + 1;
    std::vector<double> all;
    for (const PlotLine& line : plot.lines) {
      for (const auto& value : line.values) {
        if (value) all.push_back(*value);
      }
    }
    std::sort(all.begin(), all.end());
    if (all.empty()) all = {0};
    y_.high = all.back();
    if (plot.values == Plot::Values::robust)
      y_.high = std::min(y_.high, 2 * all[(all.size() - 1) * 19 / 20]);
    if (plot.values == Plot::Values::around)
      y_.low = std::max(all.front() - (y_.high - all.front()) / 10 - 0.5, 0.0);
    y_.high += (y_.high - y_.low) / 12;
    if (y_.high <= y_.low) y_.high = y_.low + 1;
    outside_ = static_cast<std::size_t>(
        std::count_if(all.begin(), all.end(), [this](double value) { return value > y_.high; }));
  }

  std::string svg() const {
    std::string names;
    for (const PlotLine& line : plot_.lines) names += (names.empty() ? "" : ", ") + line.name;
    return concat("<svg class=\"plot\" viewBox=\"0 0 ", kWidth, ' ', kHeight,
                  "\" role=\"img\" aria-label=\"",
                  escaped(concat(plot_.title, "; ", plot_.y_axis, " over ", plot_.x_axis, ": ", names)),
                  "\">", axes(), lines(), "</svg>\n");
  }

 private:
  double x_at(double value) const {
    return kLeft + (value - x_.low) / (x_.high - x_.low) * (kRight - kLeft);
  }
  double y_at(double value) const {
    return kBottom - (std::min(value, y_.high) - y_.low) / (y_.high - y_.low) * (kBottom - kTop);
  }
  static std::string text(double x, double y, const char* anchor, const std::string& words) {
    return concat("<text x=\"", fixed_text(x, 1), "\" y=\"", fixed_text(y, 1), "\" text-anchor=\"",
                  anchor, "\">", escaped(words), "</text>");
  }

  std::string axes() const {
    std::string out = "<g class=\"axes\">";
    for (const double tick : axis_ticks(y_, 5)) {
      out += concat("<path d=\"M", kLeft, ' ', fixed_text(y_at(tick), 1), "H", kRight, "\"/>",
                    text(kLeft - 7, y_at(tick) + 4, "end", tick_text(tick)));
    }
    for (const double tick : axis_ticks(x_, 7)) {
      // Between two frames there is nothing.
      if (plot_.values != Plot::Values::stretches && tick != std::floor(tick)) continue;
      out += concat("<path d=\"M", fixed_text(x_at(tick), 1), ' ', kBottom, "v4\"/>",
                    text(x_at(tick), kBottom + 18, "middle", tick_text(tick)));
    }
    if (outside_ > 0) {
      out += text(kRight, kTop - 3, "end",
                  concat(outside_, outside_ == 1 ? " value is" : " values are", " above the plot"));
    }
    return out + text((kLeft + kRight) / 2, kBottom + 38, "middle", plot_.x_axis) +
           concat("<text transform=\"translate(13 ", (kTop + kBottom) / 2,
                  ") rotate(-90)\" text-anchor=\"middle\">", escaped(plot_.y_axis), "</text></g>");
  }

  std::string path(const PlotLine& line) const {
    std::string out;
    bool pen_down = false;
    const auto count = static_cast<double>(line.values.size());
    const bool stepped = plot_.values == Plot::Values::stretches;
    const double steps = stepped ? count : std::max(count - 1, 1.0);
    for (std::size_t i = 0; i < line.values.size(); ++i) {
      if (!line.values[i]) {
        pen_down = false;
        continue;
      }
      const auto place = [&](std::size_t at) {
        return fixed_text(kLeft + (kRight - kLeft) * static_cast<double>(at) / steps, 1);
      };
      const std::string y = fixed_text(y_at(*line.values[i]), 1);
      out += concat(pen_down ? 'L' : 'M', place(i), ' ', y);
      if (stepped) out += 'H' + place(i + 1);
      pen_down = true;
    }
    return out;
  }

  std::string lines() const {
    struct Label {
      double y;
      std::size_t line;
    };
    std::string out;
    std::vector<Label> labels;
    for (std::size_t i = 0; i < plot_.lines.size(); ++i) {
      const PlotLine& line = plot_.lines[i];
      const std::string d = path(line);
      if (d.empty()) continue;
      out += concat("<path class=\"line c", i, "\" d=\"", d, "\"><title>", escaped(line.name),
                    "</title></path>");
      if (!line.label.empty() && line.values.back()) labels.push_back({y_at(*line.values.back()), i});
    }
    // Labels keep the order of their lines' ends and make room for each other.
    std::stable_sort(labels.begin(), labels.end(),
                     [](const Label& a, const Label& b) { return a.y < b.y; });
    double lowest = kBottom + 4;
    for (std::size_t i = labels.size(); i-- > 0; lowest -= kLabelHeight) {
      lowest = std::min(lowest, labels[i].y);
      labels[i].y = lowest;
    }
    double highest = kTop;
    for (Label& label : labels) {
      label.y = std::max(label.y, highest);
      highest = label.y + kLabelHeight;
      out += concat("<g class=\"label c", label.line, "\">",
                    text(kRight + 6, label.y + 4, "start", plot_.lines[label.line].label), "</g>");
    }
    return out;
  }

  const Plot& plot_;
  Interval x_, y_{0, 0};
  std::size_t outside_ = 0;
};

}  // namespace

std::vector<double> axis_ticks(const Interval& range, int most) {
  const double rough = (range.high - range.low) / most;
  const double power = std::pow(10, std::floor(std::log10(rough)));
  double step = 10 * power;
  for (const double factor : {5.0, 2.0, 1.0}) {
    if (factor * power >= rough * (1 - 1e-9)) step = factor * power;
  }
  std::vector<double> ticks;
  const auto last = static_cast<long long>(std::floor(range.high / step + 1e-9));
  for (auto k = static_cast<long long>(std::ceil(range.low / step - 1e-9)); k <= last; ++k)
    ticks.push_back(static_cast<double>(k) * step);
  return ticks;
}

std::string tick_text(double value) {
  const std::string text = number_text(std::round(value * 1e6) / 1e6);
  return value < 0 ? "\u2212" + text.substr(1) : text;
}

std::string svg_of(const Plot& plot) { return Drawing(plot).svg(); }

}  // namespace kit
