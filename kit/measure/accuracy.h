#ifndef KIT_MEASURE_ACCURACY_H
#define KIT_MEASURE_ACCURACY_H

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

#include "kit/frame/frame.h"

namespace kit {

/// Millimetres from 0 up, kept to a thousandth; its size depends on how many differ, not on how many
/// there are.
class Distribution {
 public:
  void add(double millimetres);
  void add(const Distribution& other);
  /// The smallest value with at least `part` (0 to 1) of all values up to it; nothing without values.
  std::optional<double> quantile(double part) const;
  std::uint64_t count() const { return count_; }

 private:
  std::unordered_map<std::uint64_t, std::uint64_t> counts_;  // by micrometres
  std::uint64_t count_ = 0;
};

/// What is not known is nothing. Errors and changes are absolute, in millimetres.
struct AccuracySummary {
  std::optional<double> coverage;              ///< share of the pixels that are valid
  std::optional<double> median, percentile95;  ///< error of the valid pixels with a truth
  std::optional<double> off;      ///< share of those pixels whose error is above 5 % of the truth
  std::optional<double> flicker;  ///< median change from one frame to the next, of the pixels that are
                                  ///< valid in both and whose truth stayed the same
};

/// How near the frames of one stage of a chain come to the truth, over all frames. Nothing is known of a
/// stage once one of its frames is no depth or of another size than its truth.
class Accuracy {
 public:
  /// @param truth depth in millimetres, 0 where it is not known
  /// @return of this frame alone, without its flicker; nothing is known of it once nothing is of the stage
  AccuracySummary add(const FrameView& frame, const Image& truth);
  /// The same stage of another sequence.
  void add(const Accuracy& other);

  AccuracySummary summary() const;

 private:
  static Accuracy errors_of(const std::vector<double>& depth, const Image& truth);
  void add_changes(const std::vector<double>& depth, const Image& truth);

  bool comparable_ = true;
  std::uint64_t pixels_ = 0, valid_ = 0, off_ = 0;
  Distribution errors_, changes_;
  std::vector<double> last_depth_;  // millimetres, 0 where invalid
  Image last_truth_;
};

}  // namespace kit

#endif
