// The camera's frames, read by the filter that turns disparity into depth.
#include "virtual_camera.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

#include "disparity_code.h"
#include "support/filter_driver.h"

namespace devhost {
namespace {

using filterprocessor::FilterDriver;
using filterprocessor::Pixels;

// Small, and with the disparities of a frame four times as large.
CameraConfig small(CameraConfig config = {}) {
  config.width = 160;
  config.height = 112;
  config.baseline = 200;
  return config;
}

Pixels read_depths(const CameraFrame& frame) {
  FilterDriver filter("DisparityTransform");
  Pixels depths = filter.filtered(frame.disparity);
  if (frame.disparity.format == ZV_FORMAT_PACKED_CODE) {
    for (std::uint16_t& pixel : depths) pixel >>= 4;
  }
  return depths;
}

double median(std::vector<double> values) {
  const auto middle = values.begin() + std::ssize(values) / 2;
  std::nth_element(values.begin(), middle, values.end());
  return values.empty() ? 1 : *middle;
}

/// The median relative error of the pixels that have a depth which every format can hold.
double median_error(const Pixels& depths, const Pixels& truths) {
  std::vector<double> errors;
  for (std::size_t i = 0; i < depths.size(); ++i) {
    const int truth = truths[i];
    if (depths[i] != 0 && truth > 0 && truth <= 4000)
      errors.push_back(std::abs(depths[i] - truth) / static_cast<double>(truth));
  }
  return median(errors);
}

std::uint32_t checksum(const CameraFrame& frame) {
  std::uint32_t sum = 0;
  for (const Pixels* pixels : {&frame.disparity.pixels, &frame.truth})
    for (const std::uint16_t pixel : *pixels) sum = sum * 31 + pixel;
  return sum;
}

TEST(VirtualCamera, EveryCodingReadsBackAsTheDepthThatWasMeasured) {
  struct Coding {
    std::uint8_t pack_mode;
    bool dual;
    std::int32_t format;
    std::uint8_t bits;  // 0: what the camera chooses
    std::optional<std::int64_t> correction = {};
  };
  const Coding codings[] = {
      {1, true, 0, 0},     {1, true, 0, 16},  {1, true, 0, 0, -5}, {1, true, 34, 0},  {2, true, 0, 11},
      {2, true, 0, 0, 3},  {2, true, 34, 0},  {3, true, 0, 0},     {3, true, 34, 0},  {1, false, 0, 0},
      {1, false, 34, 11},  {2, false, 0, 0},  {2, false, 0, 16},   {2, false, 34, 0}, {4, false, 0, 0},
      {4, false, 0, 0, 3}, {4, false, 34, 0},
  };
  const CameraFrame reference = VirtualCamera(small()).frame(0);
  const Pixels expected = read_depths(reference);
  std::uint32_t sum = 0;
  for (const Coding& coding : codings) {
    CameraConfig config = small();
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
    EXPECT_EQ(traits.disparity.isDualCamera, coding.dual ? 1 : 0);
    EXPECT_EQ(frame.truth, reference.truth);
    const Pixels depths = read_depths(frame);
    EXPECT_LT(median_error(depths, frame.truth), 0.02);
    const double focal_baseline = traits.disparity.fx * double{traits.disparity.baseline};
    const double step = std::ldexp(1.0, traits.disparity.dispIntPlace - traits.bits);
    int wrong = 0, misread_marks = 0;
    for (std::size_t i = 0; i < depths.size(); ++i) {
      misread_marks += traits.pixels[i] == camera.invalid_pixel() && depths[i] != 0;
      // Corrections, short ranges and the packed format cost the ends.
      if (expected[i] < 700 || expected[i] > 4000 || focal_baseline / expected[i] < 3 + step) continue;
      // Half a step of this coding, half of the finest and two of depth.
      const double tolerance =
          2 + (step / 2 + 0.002) * expected[i] * (expected[i] + 100) / focal_baseline;
      wrong += std::abs(depths[i] - expected[i]) > tolerance;
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(misread_marks, 0);
    sum = sum * 31 + checksum(frame);
  }
  EXPECT_EQ(sum, 1463794316u) << "as on every machine";
}

TEST(VirtualCamera, TakesBothEndsOfItsRangesAndNothingBeyond) {
  const auto expect_range = [](auto CameraConfig::*field, double least, double most, double beyond) {
    const auto camera_with = [&](double value) {
      CameraConfig config = small();
      config.*field = static_cast<std::remove_reference_t<decltype(config.*field)>>(value);
      return VirtualCamera(config);
    };
    for (const double end : {least, most}) EXPECT_NO_THROW(camera_with(end)) << end;
    for (const double past : {least - beyond, most + beyond})
      EXPECT_THROW(camera_with(past), std::invalid_argument) << past;
  };
  expect_range(&CameraConfig::width, 64, 4096, 1);
  expect_range(&CameraConfig::height, 48, 4096, 1);
  expect_range(&CameraConfig::baseline, 5, 500, 0.5);
  expect_range(&CameraConfig::fx, 0.25 * 160, 4.0 * 160, 0.5);
  expect_range(&CameraConfig::bit_size, 11, 16, 1);
  expect_range(&CameraConfig::disparity_correction, -128, 128, 1);
}

TEST(DisparityCode, EndsWhereTheRecordDoes) {
  ZVDisparityParam record = {};
  record.isDualCamera = 1;
  record.packMode = 2;
  record.bitSize = 11;  // eighths of a pixel
  const DisparityCode eleven(record, 0);
  EXPECT_EQ(eleven(255.875), 2047);
  EXPECT_EQ(eleven(256), eleven.invalid());
  EXPECT_EQ(eleven(0.125), 1);
  EXPECT_EQ(eleven(0.01), eleven.invalid());
  record.packMode = 1;  // counts down, and stands for more than 0 and less than 256
  record.bitSize = 16;
  const DisparityCode falling(record, 0);
  EXPECT_EQ(falling(0), falling.invalid());
  EXPECT_EQ(falling(1.0 / 128), 42031);
  EXPECT_EQ(falling(256 - 1.0 / 128), 9265);
  EXPECT_EQ(falling(256), falling.invalid());
}

TEST(VirtualCamera, FramesDependOnConfigurationAndIndexOnly) {
  struct Case {
    const char* what;
    CameraConfig config;
    std::uint32_t sum;
  };
  const Case cases[] = {
      {"nothing", {}, 1786264795u},
      {"speckle", {.faults = {.speckle = 0.05f}}, 2354419139u},
      {"much speckle", {.faults = {.speckle = 0.25f}}, 829565104u},
      {"all dropouts", {.faults = {.dropouts = 1}}, 1681928350u},
      {"all faults", {.motion = Motion::camera, .faults = {2, 0.02f, 0.5f}}, 134384109u},
      {"still", {.motion = Motion::still}, 1342552118u},
      {"little texture", {.texture = 0.2f}, 1894424392u},
      {"another seed", {.seed = 2}, 1459697016u},
  };
  for (const auto& [what, config, sum] : cases) {
    const VirtualCamera camera(small(config));
    const CameraFrame frame = camera.frame(7), first = camera.frame(0);
    EXPECT_EQ(checksum(frame), sum) << what << ", on every machine";
    EXPECT_EQ(frame.truth == first.truth, config.motion == Motion::still) << what;
    EXPECT_NE(frame.disparity.pixels, first.disparity.pixels) << what << ": the noise goes on";
  }
}

}  // namespace
}  // namespace devhost
