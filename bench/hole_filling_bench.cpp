#include "rows.h"

#ifdef FILTERPROCESSOR_PEER_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace filterprocessor::bench {

namespace {

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
  add_rows("half holes", scattered_holes(848, 480));
}

}  // namespace filterprocessor::bench
