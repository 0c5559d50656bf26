#ifndef KIT_MEASURE_STEADINESS_H
#define KIT_MEASURE_STEADINESS_H

#include <cstdint>
#include <optional>
#include <vector>

#include "kit/frame/frame.h"
#include "kit/measure/accuracy.h"

namespace kit {

/// Of frames on one side of a chain; in millimetres. What is not known is nothing.
struct SteadinessSummary {
  std::optional<double> used;     ///< share of the pixels that were looked at
  std::optional<double> flicker;  ///< median of the absolute changes from one frame to the next
  std::optional<double> noise;    ///< median of the pixels' deviations
};

/// Whether a pixel's valid values, in the order of `frames` frames, stay within their own noise, as Steadiness has it.
bool is_at_rest(const std::vector<float>& values, std::size_t frames);

/// How steady the pixels are that see something at rest, before and after a chain, without a truth.
///
/// The frames are taken in windows of 16 (a last one of at least 4) and, on a lattice of some 16000 pixels, each pixel by
/// itself. Its deviation is 1.4826 times the median distance from its median, which is the standard deviation where the noise
/// is normal. In a window a pixel stays within its own noise, and is used, if before the chain
/// - at least three quarters of its values are valid,
/// - none of them is farther from the median than 5 deviations, and
/// - the medians of the first and of the second half are no farther apart than 1.2 deviations, so that it doesn't drift,
/// where a deviation counts as no less than a thousandth of the depth, for values that are coarser than their noise. The same
/// pixels are used after the chain where at least three quarters of their values are valid there too.
class Steadiness {
 public:
  static constexpr std::size_t kWindow = 16, kLeastFrames = 4;

  void add(const FrameView& before, const FrameView& after);
  /// Takes the frames of an unfinished window into account. No more frames are added then.
  void finish();

  const SteadinessSummary& before() const { return before_; }
  /// Nothing is known where the size changes.
  const SteadinessSummary& after() const { return after_; }

 private:
  using Depths = std::vector<float>;  // of the lattice, 0 where invalid
  struct Side {
    std::vector<Depths> window;
    Distribution changes, deviations;
    std::uint64_t used = 0;
  };

  void end_window();
  void measure(Side& side, std::size_t pixel);
  SteadinessSummary summary(const Side& side) const;

  std::uint32_t width_ = 0, height_ = 0;
  bool comparable_ = true;
  std::uint64_t looked_at_ = 0;
  Side old_, new_;
  SteadinessSummary before_, after_;
};

}  // namespace kit

#endif
