#ifndef KIT_REPORT_PLOTS_H
#define KIT_REPORT_PLOTS_H

#include <optional>
#include <string>
#include <vector>

#include "kit/report/meaning.h"

namespace kit {

/// Places of an axis where numbers stand: multiples of 1, 2 or 5 times a power of ten.
std::vector<double> axis_ticks(const Interval& range, int most);
std::string tick_text(double value);

/// A line; missing points interrupt it.
struct PlotLine {
  std::string label;  ///< a character or two, at its end
  std::string name;   ///< what it is, in words
  std::vector<std::optional<double>> values;
};

struct Plot {
  std::string title;
  std::string x_axis, y_axis;  ///< with units
  Interval x;                  ///< of the first and the last value
  std::vector<PlotLine> lines;
  enum class Values {
    from_zero,
    around,    ///< the vertical axis has room for the values only
    robust,    ///< from zero to somewhat above most of them; a few may lie outside
    stretches  ///< each is of the stretch to the next, as in a histogram
  } values = Values::from_zero;
};

/// An inline SVG image that takes its colours from the page: lines have classes c0, c1, c2...
std::string svg_of(const Plot& plot);

}  // namespace kit

#endif
