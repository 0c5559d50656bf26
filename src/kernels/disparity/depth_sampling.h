#ifndef FILTERPROCESSOR_KERNELS_DISPARITY_DEPTH_SAMPLING_H
#define FILTERPROCESSOR_KERNELS_DISPARITY_DEPTH_SAMPLING_H

#include <cstdint>
#include <span>

namespace filterprocessor {

/// How a depth image of another size is taken from a disparity image. Sizes and positions in pixels.
struct DepthSampling {
  std::int32_t target_width;
  std::int32_t target_height;
  float scale;         ///< target pixels per source pixel
  std::int32_t x_cut;  ///< first source column
  std::int32_t y_cut;  ///< first source row
  std::int32_t x_set;  ///< width of the borders that stay 0
  std::int32_t y_set;  ///< height of the borders that stay 0
};

/// Samples the nearest pixel to the upper left in 16.16 fixed point and converts it. Codes past the table
/// and positions outside the source give 0. `source` and `target` hold as many pixels as their sizes say.
void sample_depth(const DepthSampling& sampling, const std::uint16_t* source, std::uint32_t width,
                  std::uint32_t height, std::span<const std::uint16_t> table, std::uint16_t* target);

}  // namespace filterprocessor

#endif
