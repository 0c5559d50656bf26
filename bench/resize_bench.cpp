#include <cstdio>

#include "kernels/resize/resize.h"
#include "rows.h"

#ifdef FILTERPROCESSOR_PEER_OPENCV
#include <opencv2/imgproc.hpp>
#endif
#ifdef FILTERPROCESSOR_PEER_LIBYUV
#include <libyuv/scale.h>
#endif

namespace filterprocessor::bench {

namespace {

/// The row's image is the target: memcpy and the time a pixel refer to it.
void add_rows(Size size, float scale) {
  const auto source = std::make_shared<const Image>(stereo_scene(size.width, size.height));
  const int width = target_extent(static_cast<float>(size.width), scale, 0, 0);
  const int height = target_extent(static_cast<float>(size.height), scale, 0, 0);
  char name[32];
  std::snprintf(name, sizeof name, "resize by %g to", double{scale});
  Row row(name, Image(width, height));
  const ResizeAxis columns = resize_axis(size.width, width, scale, 0);
  const ResizeAxis rows = resize_axis(size.height, height, scale, 0);
  row.add_levels([=](const KernelSet& kernels, std::uint16_t* target) {
    kernels.resize.resize(source->pixels.data(), columns, rows, target);
  });
#ifdef FILTERPROCESSOR_PEER_OPENCV
  row.add("peer", [=](std::uint16_t* pixels) {
    const cv::Mat from(size.height, size.width, CV_16U,
                       const_cast<std::uint16_t*>(source->pixels.data()));
    cv::Mat target(height, width, CV_16U, pixels);
    cv::resize(from, target, target.size(), 0, 0, cv::INTER_NEAREST);
  });
#endif
#ifdef FILTERPROCESSOR_PEER_LIBYUV
  row.add("libyuv", [=](std::uint16_t* target) {
    libyuv::ScalePlane_16(source->pixels.data(), size.width, size.width, size.height, target, width,
                          width, height, libyuv::kFilterNone);
  });
#endif
}

}  // namespace

void add_resize_rows() {
  for (const float scale : {1.0f, 2.0f, 1.5f, 0.5f, 0.3f}) add_rows({848, 480}, scale);
  for (const Size size : {kSizes[0], kSizes[2]}) add_rows(size, 0.5f);
  add_rows(kSizes[2], 2.0f);
}

}  // namespace filterprocessor::bench
