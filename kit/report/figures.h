#ifndef KIT_REPORT_FIGURES_H
#define KIT_REPORT_FIGURES_H

#include <map>
#include <set>
#include <string>

#include "kit/report/meaning.h"
#include "kit/report/measures.h"

namespace kit {

/// A picture's frame, and how the page calls it.
struct Side {
  const Frame* frame;
  std::string id;       ///< the same for the same frame
  std::string caption;  ///< what it shows
  /// One that is much like it, so that its pixels take less room; may be null.
  const Side* base = nullptr;
};

/// Whether the pixels of a figure come with it, for scripts to read and to colour.
enum class PixelData { none, exact };

/// The figures of a page. What they are made of is encoded once, so that a page can be tried in several lengths.
class Figures {
 public:
  /// @param depth,disparity where the colours begin and end, for all figures
  Figures(const Interval& depth, const Interval& disparity) : depth_(depth), disparity_(disparity) {}

  /// Both pictures, one over the other behind a divider where scripts run and the shapes are equal.
  std::string pair(const Side& before, const Side& after, PixelData data);
  std::string single(const Side& side, PixelData data);
  /// What separates the second from the first; empty where they cannot be compared.
  std::string difference(const Side& before, const Side& after, const std::string& caption);

  /// The pixels that the figures made since the last call need.
  std::string take_data();

 private:
  const Interval& range_of(const Unit& unit) const { return unit.is_depth() ? depth_ : disparity_; }
  std::string image(const Side& side, PixelData data);
  std::string legend(const Unit& unit) const;
  std::string packed(const Side& side);
  std::string meaning_id(const Frame& frame);
  void need(const Side& side);

  Interval depth_, disparity_;
  std::map<std::string, std::string> images_, differences_, packed_;  // by id
  std::set<std::string> based_;                                       // whose pixels need their base
  std::map<std::string, std::string> meanings_;                       // packed, and their ids
  std::set<std::string> needed_;
};

/// Styles for what the figures show: the colour maps as gradients.
std::string figure_styles();
/// What scripts have to know of them: the colour maps as JSON.
std::string figure_settings();

}  // namespace kit

#endif
