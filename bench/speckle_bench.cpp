#include <memory>

#include "rows.h"

#ifdef FILTERPROCESSOR_PEER_OPENCV
#include <opencv2/calib3d.hpp>
#endif

namespace filterprocessor::bench {

namespace {

constexpr int kMaxDifference = 80;  // millimetres; the scene says how many runs it has at this one
constexpr int kTextureDifference = 16;
constexpr int kMaxSize = 80;

using Remove = SpeckleKernels::Remove* SpeckleKernels::*;

Row speckle_row(const std::string& name, const Image& image, Remove kernel,
                const SpeckleThreshold& threshold, const SpeckleLimit& limit) {
  Row row(name, image);
  const auto width = static_cast<std::size_t>(image.width);
  const auto height = static_cast<std::size_t>(image.height);
  auto work = std::make_shared<std::vector<unsigned char>>(9 * width * height + 1);
  row.add_levels([=](const KernelSet& kernels, std::uint16_t* pixels) {
    (kernels.speckle.*kernel)({pixels, work->data(), width, height, 0}, threshold, limit);
  });
  return row;
}

void add_full_fixed(const std::string& scene, const Image& image, int max_difference = kMaxDifference) {
  Row row = speckle_row("speckle fixed, " + scene, image, &SpeckleKernels::full,
                        SpeckleThreshold::fixed(max_difference), SpeckleLimit::fixed(kMaxSize));
#ifdef FILTERPROCESSOR_PEER_OPENCV
  // The same regions and the same result; filterSpeckles takes signed values, and the scenes stay below
  // 32768.
  auto buffer = std::make_shared<cv::Mat>();
  row.add("peer", [=, width = image.width, height = image.height](std::uint16_t* pixels) {
    cv::Mat view(height, width, CV_16S, pixels);
    cv::filterSpeckles(view, 0, kMaxSize, max_difference, *buffer);
  });
#endif
}

}  // namespace

void add_speckle_rows() {
  static const std::vector<std::uint16_t> table = scene_table();
  const auto by_table =
      SpeckleThreshold::from_table(table.data(), 9, static_cast<std::uint8_t>(table.size()));
  const auto fixed = SpeckleThreshold::fixed(kMaxDifference);
  const auto limit = SpeckleLimit::fixed(kMaxSize);
  const auto quarter = SpeckleLimit::fixed(kMaxSize / 4);
  static const std::vector<std::uint16_t> size_map = {20, 30, 20, 30, 40, 30, 20, 30, 20};
  const SpeckleLimit by_place = {0, size_map.data(), 3, 3};
  for (const Size size : kSizes) {
    const Image room = stereo_scene(size.width, size.height);
    add_full_fixed("room", room);
    speckle_row("speckle table, room", room, &SpeckleKernels::full, by_table, limit);
    speckle_row("speckle pyramid fixed, room", room, &SpeckleKernels::pyramid, fixed, quarter);
    speckle_row("speckle pyramid table, room", room, &SpeckleKernels::pyramid, by_table, quarter);
    speckle_row("speckle pyramid fixed map, room", room, &SpeckleKernels::pyramid, fixed, by_place);
    speckle_row("speckle pyramid table map, room", room, &SpeckleKernels::pyramid, by_table, by_place);
    add_full_fixed("texture", textured_scene(size.width, size.height), kTextureDifference);
  }
  add_full_fixed("noise", noise(848, 480, 1, 30000, 1));
  add_full_fixed("checkerboard", checkerboard(848, 480));
  add_full_fixed("comb", comb(848, 480));
  add_full_fixed("spiral", spiral(848, 480));
  speckle_row("speckle table, ramp", ramp(848, 480, 3), &SpeckleKernels::full, by_table, limit);
  speckle_row("speckle table, noise", noise(848, 480, 1, 4000, 1), &SpeckleKernels::full, by_table,
              limit);
}

}  // namespace filterprocessor::bench
