#ifndef KIT_REPORT_MEANING_H
#define KIT_REPORT_MEANING_H

#include <span>
#include <string>
#include <vector>

#include "kit/frame/frame.h"

namespace kit {

/// What a frame's pixels are measured in.
class Unit {
 public:
  explicit Unit(const FrameView& frame);
  bool operator==(const Unit&) const = default;

  bool is_depth() const { return is_depth_; }
  const char* name() const { return is_depth_ ? "mm" : "disparity code"; }
  /// What people are shown of a value: disparity codes may fall with the distance, values grow with it.
  double shown(double value) const { return falls_ ? -value : value; }

 private:
  bool is_depth_;
  bool falls_;
};

/// What the pixels of a frame say, as numbers of its unit that grow with the distance.
class Meaning {
 public:
  explicit Meaning(const Frame& frame);

  /// NaN for an invalid pixel.
  double operator()(std::uint16_t pixel) const { return values_[pixel]; }
  const std::vector<double>& values() const { return values_; }
  /// What one step of a pixel is worth.
  double scale() const { return scale_; }

 private:
  double scale_;
  std::vector<double> values_;  // by pixel
};

struct Interval {
  double low = 0;
  double high = 1;
};

/// Counts of pixel values, of frames of one unit.
class ValueCounts {
 public:
  void add(const Frame& frame);
  std::uint64_t total() const { return total_; }
  /// All values but the nearest and the farthest hundredth.
  Interval robust_range() const;
  /// Shares of all pixels, valid or not, in even steps of the range. What lies outside is left out.
  std::vector<double> shares(const Interval& range, std::size_t steps) const;

 private:
  std::vector<std::pair<double, std::uint64_t>> sorted() const;

  std::vector<std::pair<double, std::uint64_t>> counts_;
  std::uint64_t total_ = 0;
};

}  // namespace kit

#endif
