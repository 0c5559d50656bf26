/// Stereo by block matching: census transform, Hamming distance summed over a square window, winner takes
/// all.
#ifndef FILTERPROCESSOR_HOST_BLOCK_MATCHING_H
#define FILTERPROCESSOR_HOST_BLOCK_MATCHING_H

#include <cstdint>
#include <vector>

namespace devhost {

/// Columns and rows at each side of the images that windows reach into and no result is for.
inline constexpr std::uint32_t kMatchMargin = 6;

struct MatchSettings {
  std::uint32_t width = 0, height = 0;  ///< of the result; the images have the margin in addition
  std::uint32_t disparities = 0;        ///< the search goes from 0 to this, which is below `width`
  std::int32_t uniqueness = 6;          ///< per cent by which every other disparity has to be worse
};

struct Match {
  /// Pixels by which the left image's point lies farther right; 0 where no match was found. The first
  /// `disparities` columns never have one.
  std::vector<float> disparity;
  std::vector<std::uint8_t> confidence;  ///< 1 to 15, and 0 where there is no match
};

/// Matches two 8-bit images of (width + 2 margins) x (height + 2 margins). A minimum at either end of the
/// search, one that is not unique and one that the right image doesn't confirm are dropped. No smoothing.
Match match_blocks(const std::vector<std::uint8_t>& left, const std::vector<std::uint8_t>& right,
                   const MatchSettings& settings);

}  // namespace devhost

#endif
