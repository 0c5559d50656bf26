/// Depth images made for measuring and for comparing kernels. Each is a function of its arguments alone.
#ifndef FILTERPROCESSOR_BENCH_SCENES_H
#define FILTERPROCESSOR_BENCH_SCENES_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace filterprocessor::bench {

/// `width` x `height` pixels, row after row without gaps.
struct Image {
  int width;
  int height;
  std::vector<std::uint16_t> pixels;

  Image(int w, int h, std::uint16_t value = 0);
  std::size_t size() const { return pixels.size(); }
  std::uint16_t& at(int row, int col) {
    return pixels[static_cast<std::size_t>(row) * static_cast<std::size_t>(width) +
                  static_cast<std::size_t>(col)];
  }
};

/// What a stereo camera sees in a room, in mm: tilted surfaces from 0.6 m to 5 m with steps between them,
/// noise of a few codes of an eighth-pixel disparity that grows with distance, 8 % of the pixels without
/// depth (0) in blobs and beside the left border, and 300 small wrong patches at 848 x 480. With
/// thresholds from scene_table(), or 80 mm for all, the image has about 0.018 runs of joined pixels in a
/// row for every pixel.
Image stereo_scene(int width, int height, std::uint32_t seed = 1);

/// The depth that a difference of a few disparity codes makes at 500, 1000, ... 3500 mm; for a shift
/// of 9.
std::vector<std::uint16_t> scene_table();

/// The same with every other pixel, at random, a hole.
Image scattered_holes(int width, int height, std::uint32_t seed = 1);

/// Smooth surfaces, in mm, with noise of a few codes on every pixel: at a threshold of 16 about 0.14 runs a
/// pixel, most of them joined to those above.
Image textured_scene(int width, int height, std::uint32_t seed = 1);

/// What a scene is like, for a benchmark to say of itself.
struct SceneFigures {
  double hole_share;      ///< of all pixels
  double runs_per_pixel;  ///< stretches of a row whose neighbours differ by no more than the threshold
};
SceneFigures figures_of(const Image& image, int threshold);

/// Hard images for labelling. Values lie 1000 apart where they must not join.
Image noise(int width, int height, std::uint16_t low, std::uint16_t high, std::uint32_t seed);
Image checkerboard(int width, int height);
/// Columns of one pixel that join along the bottom row only.
Image comb(int width, int height);
/// One path of one pixel that winds inwards.
Image spiral(int width, int height);
/// Every pixel is larger than its left and upper neighbours by `step`; with scene_table() and a suitable
/// step most links lead one way only.
Image ramp(int width, int height, std::uint16_t step);

}  // namespace filterprocessor::bench

#endif
