#include "virtual_camera.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "disparity_code.h"

namespace devhost {
namespace {

// Small, and with the disparities of a frame four times as large.
CameraConfig small_config() {
  CameraConfig config;
  config.width = 160;
  config.height = 112;
  config.baseline = 200;
  return config;
}

// Depth in millimetres of one stored pixel as a reader of the frame finds it, 0 for none.
double read_depth(const FrameTraits& frame, std::uint16_t pixel) {
  const ZVDisparityParam& record = frame.disparity;
  const bool packed = frame.format == 34, dual = record.isDualCamera != 0;
  const int code = packed ? pixel >> 4 : pixel;
  const double fb = record.fx * static_cast<double>(record.baseline);
  const double step = std::ldexp(1.0, (record.packMode == 3 ? 10 : 8) - frame.bits);
  double d = code * step;
  if (record.packMode == 1) d = (200.375 - 2 * d) + (dual ? 128.0 - record.minDisparity : 0.0);
  if (code > 65531) return 0;
  if (dual) {
    if (std::abs(d - record.invalidDisp) < 0.0001 || d <= 0 || d >= (record.packMode == 3 ? 1024 : 256))
      return 0;
    const auto correction = frame.metadata.find(32);
    d += correction != frame.metadata.end() ? static_cast<double>(correction->second) : 0.0;
    const double z = fb / (d + record.dispOffset) * record.unit;
    return z >= 0 && z < (packed ? 4096 : 65536) ? z : 0;
  }
  if (record.packMode == 1 && code == 0) return 0;
  if (record.packMode == 2) {
    if (code == 8192) return 0;
    const int low = code & 0x3FFF;
    d = (low < 8192 ? low : low - 16384) * step;
  }
  const double z = record.zpd * record.unit / ((d + record.dispOffset) * record.zpd / fb + 1.0);
  return z >= 0 && z < 65536 ? z : 0;
}

std::vector<double> read_depths(const FrameTraits& frame) {
  std::vector<double> depths;
  for (const std::uint16_t pixel : frame.pixels) depths.push_back(read_depth(frame, pixel));
  return depths;
}

double median(std::vector<double> values) {
  if (values.empty()) return std::numeric_limits<double>::infinity();
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// Relative errors of the pixels that have a depth and whose true depth lies in [near, far].
std::vector<double> errors(const CameraFrame& frame, double near = 1, double far = 65535) {
  std::vector<double> found;
  const std::vector<double> depths = read_depths(frame.disparity);
  for (std::size_t i = 0; i < depths.size(); ++i) {
    const double truth = frame.truth[i];
    if (depths[i] == 0 || truth < near || truth > far) continue;
    found.push_back(std::abs(depths[i] - truth) / truth);
  }
  return found;
}

template <typename Predicate>
double share(const std::vector<double>& values, Predicate predicate) {
  return static_cast<double>(std::count_if(values.begin(), values.end(), predicate)) /
         static_cast<double>(values.size());
}

struct Coding {
  std::uint8_t pack_mode;
  bool dual;
  std::int32_t format;
  std::uint8_t bits;  // 0: what the camera chooses
  std::optional<std::int64_t> correction = {};
};

TEST(VirtualCamera, EveryCodingReadsBackAsTheDepthThatWasMeasured) {
  const Coding codings[] = {
      {1, true, 0, 0},     {1, true, 0, 16},  {1, true, 0, 0, -5}, {1, true, 34, 0},  {2, true, 0, 11},
      {2, true, 0, 0, 3},  {2, true, 34, 0},  {3, true, 0, 0},     {3, true, 34, 0},  {1, false, 0, 0},
      {1, false, 34, 11},  {2, false, 0, 0},  {2, false, 0, 16},   {2, false, 34, 0}, {4, false, 0, 0},
      {4, false, 0, 0, 3}, {4, false, 34, 0},
  };
  const VirtualCamera finest(small_config());
  const CameraFrame reference = finest.frame(0);
  const std::vector<double> expected = read_depths(reference.disparity);
  const double fb = finest.parameters().fx * static_cast<double>(finest.parameters().baseline);

  for (const Coding& coding : codings) {
    CameraConfig config = small_config();
    config.pack_mode = coding.pack_mode;
    config.dual = coding.dual;
    config.format = coding.format;
    config.bit_size = coding.bits;
    config.disparity_correction = coding.correction;
    const VirtualCamera camera(config);
    const CameraFrame frame = camera.frame(0);
    const FrameTraits& traits = frame.disparity;
    SCOPED_TRACE(testing::Message() << "pack mode " << int{coding.pack_mode} << ", dual " << coding.dual
                                    << ", format " << coding.format << ", bits " << int{traits.bits});

    EXPECT_EQ(traits.bits, traits.disparity.bitSize);
    EXPECT_EQ(frame.truth, reference.truth);
    EXPECT_LT(median(errors(frame)), 0.02);
    const std::vector<double> depths = read_depths(traits);
    const double step = std::ldexp(1.0, traits.disparity.dispIntPlace - traits.bits);
    int wrong = 0, lost = 0, misread_marks = 0;
    for (std::size_t i = 0; i < depths.size(); ++i) {
      const bool marked = traits.pixels[i] == camera.invalid_pixel();
      misread_marks += marked && depths[i] != 0;
      // Half a step of this coding and half a step of the finest, 1/256.
      if (depths[i] > 0) wrong += std::abs(fb / depths[i] - fb / expected[i]) > step / 2 + 0.00196;
      // The packed format reads nothing from 4096 on; corrections and short ranges cost the ends.
      const bool codable = expected[i] > 700 && expected[i] < 4000 && fb / expected[i] > 3 + step;
      lost += depths[i] == 0 && codable;
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(lost, 0);
    EXPECT_EQ(misread_marks, 0);
  }
}

TEST(VirtualCamera, HasTheFaultsOfBlockMatching) {
  CameraConfig config = small_config();
  config.width = 320;
  config.height = 200;
  config.baseline = 100;
  const VirtualCamera camera(config);
  const CameraFrame frame = camera.frame(0);
  const std::vector<double> depths = read_depths(frame.disparity);
  const std::uint32_t width = config.width, blind = camera.blind_columns();

  int seen_blind = 0, seen_first = 0, alone = 0;
  int far_side[2] = {}, far_side_holes[2] = {};  // beside left and right edges of nearer things
  std::vector<double> sighted;
  for (std::uint32_t y = 1; y + 1 < config.height; ++y) {
    const double* row = depths.data() + std::size_t{y} * width;
    const std::uint16_t* truth = frame.truth.data() + std::size_t{y} * width;
    for (std::uint32_t x = 0; x < width; ++x) {
      if (x < blind) seen_blind += row[x] > 0;
      if (x == blind) seen_first += row[x] > 0;
      if (x >= blind) sighted.push_back(row[x]);
      if (x <= blind + 12 || x + 12 >= width) continue;
      const auto differs = [&](double z) { return z == 0 || std::abs(z / row[x] - 1) > 0.2; };
      alone += row[x] > 0 && differs(row[x - 1]) && differs(row[x + 1]) && differs((row - width)[x]) &&
               differs(row[x + width]);
      const auto here = static_cast<std::ptrdiff_t>(x);
      for (const int side : {0, 1}) {
        const int out = side == 0 ? -1 : 1;
        if (truth[here] == 0 || truth[here + out] < 1.5 * truth[here]) continue;
        for (int i = 6; i <= 9; ++i) {  // beyond the fattened edge
          ++far_side[side];
          far_side_holes[side] += row[here + out * i] == 0;
        }
      }
    }
  }
  EXPECT_EQ(seen_blind, 0);
  EXPECT_GT(seen_first, static_cast<int>(config.height) / 2);
  const double coverage = share(sighted, [](double z) { return z > 0; });
  EXPECT_GT(coverage, 0.85);
  EXPECT_LT(coverage, 0.95);
  EXPECT_GT(alone, 5);
  ASSERT_GT(far_side[0], 100);
  ASSERT_GT(far_side[1], 100);
  EXPECT_GT(far_side_holes[0] * far_side[1], 2 * far_side_holes[1] * far_side[0]) << "no occlusion bands";

  const double rough = share(errors(frame), [](double e) { return e > 0.05; });
  EXPECT_GT(rough, 0.005);
  EXPECT_LT(rough, 0.15);
  EXPECT_GT(median(errors(frame, 3000, 5000)), 2 * median(errors(frame, 400, 1500)));
}

TEST(VirtualCamera, FramesDependOnSeedAndIndexOnly) {
  const CameraConfig config = small_config();
  const VirtualCamera camera(config);
  const CameraFrame first = camera.frame(0), next = camera.frame(1);
  EXPECT_EQ(VirtualCamera(config).frame(1).disparity.pixels, next.disparity.pixels);

  CameraConfig other = config;
  other.seed = 2;
  EXPECT_NE(VirtualCamera(other).frame(0).truth, first.truth);

  // One step moves little; noise is new in every frame, and depths agree where nothing moved.
  std::size_t moved = 0, noisy = 0, apart = 0, both = 0;
  for (std::size_t i = 0; i < first.truth.size(); ++i) {
    const int a = first.disparity.pixels[i], b = next.disparity.pixels[i];
    moved += first.truth[i] != next.truth[i];
    noisy += a != b;
    both += a != 0 && b != 0;
    apart += a != 0 && b != 0 && std::abs(a - b) > 256;
  }
  EXPECT_GT(moved, 10u);
  EXPECT_LT(moved, first.truth.size() / 10);
  EXPECT_GT(noisy, first.truth.size() / 4);
  EXPECT_LT(apart, both / 50);
}

TEST(VirtualCamera, FramesAreTheSameOnEveryMachine) {
  const CameraFrame frame = VirtualCamera(small_config()).frame(7);
  std::uint32_t sum = 0;
  for (const std::uint16_t pixel : frame.disparity.pixels) sum = sum * 31 + pixel;
  for (const std::uint16_t depth : frame.truth) sum = sum * 31 + depth;
  EXPECT_EQ(sum, 1786264795u);
}

}  // namespace
}  // namespace devhost
