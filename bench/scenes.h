/// Images to measure and compare kernels on. Every image is a function of its arguments, the same on
/// every machine.
#ifndef FILTERPROCESSOR_BENCH_SCENES_H
#define FILTERPROCESSOR_BENCH_SCENES_H

#include <cstdint>
#include <string>
#include <vector>

namespace filterprocessor::bench {

struct Image {
  int width = 0;
  int height = 0;
  std::vector<std::uint16_t> pixels;

  std::size_t size() const { return pixels.size(); }
};

/// A depth image in millimetres as a stereo camera sees a room: a floor, walls and boxes between 0.5 m
/// and 5 m, noise that grows with the square of the distance, about 8 % holes in blobs, 300 speckles (at
/// 848 x 480; in proportion elsewhere) and an invalid band at the left border.
Image stereo_scene(int width, int height, std::uint32_t seed = 1);

/// Half of the pixels, at random, are holes.
Image scattered_holes(int width, int height, std::uint32_t seed = 1);

/// What a scene is like, for a benchmark to say of itself.
struct SceneFigures {
  double hole_share;      ///< of all pixels
  double runs_per_pixel;  ///< runs of valid pixels whose neighbours differ by no more than the threshold
};
SceneFigures figures_of(const Image& image, int threshold);

}  // namespace filterprocessor::bench

#endif
