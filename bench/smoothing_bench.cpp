#include <memory>

#include "rows.h"

#ifdef FILTERPROCESSOR_PEER_OPENCV
#include <opencv2/imgproc.hpp>
#endif
#ifdef FILTERPROCESSOR_PEER_XIMGPROC
#include <opencv2/ximgproc/edge_filter.hpp>
#endif

namespace filterprocessor::bench {

namespace {

/// A step of 160 codes of 1/256 pixel for a baseline times focal length of 40000: 3 mm near to 191 mm
/// far.
constexpr std::uint16_t kTable[] = {3, 15, 35, 62, 97, 140, 191};

void add_spatial(const std::string& name, Size size, float alpha, std::uint8_t radius) {
  Row row(name, stereo_scene(size.width, size.height));
  const auto width = static_cast<std::size_t>(size.width);
  const auto height = static_cast<std::size_t>(size.height);
  row.add_levels([=](const KernelSet& kernels, std::uint16_t* pixels) {
    kernels.spatial.both(pixels, width, height, {{kTable, 7, 9}, alpha, radius});
  });
#ifdef FILTERPROCESSOR_PEER_XIMGPROC
  // Recursive and edge-preserving as well, in floats; conversions are not counted.
  auto source = std::make_shared<cv::Mat>();
  cv::Mat(size.height, size.width, CV_16U, const_cast<std::uint16_t*>(row.image().pixels.data()))
      .convertTo(*source, CV_32F);
  auto target = std::make_shared<cv::Mat>();
  row.add_reading("peer", [=](const std::uint16_t*) {
    cv::ximgproc::dtFilter(*source, *source, *target, 4, 60, cv::ximgproc::DTF_RF, 1);
  });
#endif
}

void add_temporal(Size size) {
  Row row("temporal, room", stereo_scene(size.width, size.height, 1));
  const auto before = std::make_shared<const Image>(stereo_scene(size.width, size.height, 1));
  auto history = std::make_shared<std::vector<std::uint16_t>>(before->pixels);
  for (std::size_t i = 0; i < history->size(); ++i) {
    if ((*history)[i] != 0) (*history)[i] = static_cast<std::uint16_t>((*history)[i] + i % 9);
  }
  row.add_levels([=](const KernelSet& kernels, std::uint16_t* pixels) {
    kernels.temporal.smooth(pixels, history->data(), history->size(), 0.1f, 0.4f);
  });
#ifdef FILTERPROCESSOR_PEER_OPENCV
  // A running average of valid pixels without the test of closeness.
  auto average = std::make_shared<cv::Mat>(size.height, size.width, CV_32F, cv::Scalar(1000));
  auto mask = std::make_shared<cv::Mat>();
  cv::Mat(size.height, size.width, CV_16U, const_cast<std::uint16_t*>(before->pixels.data()))
      .convertTo(*mask, CV_8U);
  row.add_reading("peer", [=](const std::uint16_t* pixels) {
    const cv::Mat frame(size.height, size.width, CV_16U, const_cast<std::uint16_t*>(pixels));
    cv::accumulateWeighted(frame, *average, 0.4, *mask);
  });
#endif
}

}  // namespace

void add_smoothing_rows() {
  for (const Size size : kSizes) {
    add_spatial("spatial table, alpha 0.5", size, 0.5f, 1);
    add_temporal(size);
  }
  add_spatial("spatial table, alpha 0.37", {848, 480}, 0.37f, 1);
  add_spatial("spatial table, alpha 0.25", {848, 480}, 0.25f, 1);
  add_spatial("spatial table, alpha 0.5, radius 4", {848, 480}, 0.5f, 4);
}

}  // namespace filterprocessor::bench
