#include <algorithm>
#include <cmath>
#include <random>

#include "rows.h"

#ifdef FILTERPROCESSOR_PEER_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace filterprocessor::bench {

namespace {

/// The room with other holes: ragged bands that lean, as beside the border and behind the edges of near
/// things, and patches of a few pixels. 11 % of the pixels are holes, in 4.5 runs a row, and 28 % of all
/// stretches of 32 pixels hold one.
Image shadowed_room(int width, int height) {
  Image image = stereo_scene(width, height);
  std::replace(image.pixels.begin(), image.pixels.end(), std::uint16_t{0}, std::uint16_t{4000});
  std::mt19937 random(1);
  const auto below = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
  const auto clear = [&](int row, int from, int to) {
    for (int x = std::max(from, 0); x < std::min(to, width); ++x) image.at(row, x) = 0;
  };
  for (int y = 0; y < height; ++y) {
    const double down = static_cast<double>(y) / height;
    const int border = static_cast<int>(width * (0.05 - 0.035 * down));
    const int edge = static_cast<int>(width * (0.30 + 0.03 * std::sin(9 * down) - 0.1 * down));
    clear(y, 0, border + below(6));
    clear(y, edge - below(5), edge + width / 22 + below(5));
  }
  for (int patch = width * height / 800; patch > 0; --patch) {
    const int row = below(height);
    const int column = below(width);
    const int size = 1 + below(6);
    for (int y = row; y < std::min(row + size, height); ++y) {
      clear(y, column - below(2), column + size + below(2));
    }
  }
  return image;
}

void add_rows(const std::string& scene, const Image& image) {
  const struct {
    const char* name;
    HoleFillingKernels::Fill* HoleFillingKernels::*mode;
  } modes[] = {{"holes top", &HoleFillingKernels::top},
               {"holes nearest", &HoleFillingKernels::smaller},
               {"holes farthest", &HoleFillingKernels::larger}};
  const auto width = static_cast<std::size_t>(image.width);
  const auto height = static_cast<std::size_t>(image.height);
  for (const auto& mode : modes) {
    Row row(mode.name + (", " + scene), image);
    row.add_levels([=](const KernelSet& kernels, std::uint16_t* pixels) {
      (kernels.hole_filling.*mode.mode)(pixels, width, height);
    });
#ifdef FILTERPROCESSOR_PEER_OPENCV
    // No peer fills holes by these rules; a 3 x 3 minimum or maximum looks at about as many neighbours.
    if (mode.mode == &HoleFillingKernels::top) continue;
    auto target = std::make_shared<cv::Mat>(image.height, image.width, CV_16U);
    const bool smaller = mode.mode == &HoleFillingKernels::smaller;
    row.add_reading("peer", [=](const std::uint16_t* pixels) {
      const cv::Mat source(static_cast<int>(height), static_cast<int>(width), CV_16U,
                           const_cast<std::uint16_t*>(pixels));
      smaller ? cv::erode(source, *target, cv::Mat()) : cv::dilate(source, *target, cv::Mat());
    });
#endif
  }
}

}  // namespace

void add_hole_filling_rows() {
  for (const Size size : kSizes) add_rows("room", stereo_scene(size.width, size.height));
  add_rows("shadows", shadowed_room(640, 360));
  add_rows("half holes", scattered_holes(848, 480));
}

}  // namespace filterprocessor::bench
