/// All nine filters, each with a frame that it does its whole work on.
#ifndef FILTERPROCESSOR_TESTS_SUPPORT_EVERY_FILTER_H
#define FILTERPROCESSOR_TESTS_SUPPORT_EVERY_FILTER_H

#include <cstdint>
#include <string>
#include <vector>

#include "dev_host.h"

namespace filterprocessor {

struct FilterUse {
  const char* name;
  std::vector<std::string> configuration;  ///< takes frames of any size, save that of DepthResize
  std::vector<std::string> other;          ///< another one, for the same frames
  std::int32_t pixel_type = ZV_PIXEL_TYPE_DEPTH;
};

/// Configurations for frames of `width` x `height`.
inline std::vector<FilterUse> every_filter(std::uint32_t width, std::uint32_t height) {
  const std::string w = std::to_string(width);
  const std::string h = std::to_string(height);
  const std::string half_w = std::to_string(width / 2);
  const std::string half_h = std::to_string(height / 2);
  const std::int32_t codes = ZV_PIXEL_TYPE_DISPARITY;
  return {{"DisparityTransform", {"10000", "100", "1"}, {"5000", "100", "0.5"}, codes},
          {"HoleFillingFilter", {"1"}, {"2"}},
          {"NoiseRemovalFilter", {"80", "256", "848", "480"}, {"10", "16", "640", "400"}},
          {"SpatialAdvancedFilter", {"1", "0.5", "160", "1"}, {"2", "0.3", "100", "4"}},
          {"TemporalFilter", {"0.1", "0.4"}, {"0.5", "0.9"}},
          {"DepthResize", {w, h, "1", "0", "0", "0", "0"}, {half_w, half_h, "0.5", "0", "0", "0", "0"}},
          {"EdgeNoiseRemovalFilter",
           {"6", "6", "70", "30", "1", "1280", "800"},
           {"9", "4", "80", "40", "0", "640", "400"}},
          {"HardwareD2DCorrectionFilter", {}, {}},
          {"OpenNIDisparityTransform",
           {"10000", "100", "1", "0", "0", "1", "0", "0", "0", "0"},
           {"9000", "10", "2", half_w, half_h, "0.5", "1", "1", "1", "1"},
           codes}};
}

/// A frame with slopes, jumps and holes that change with `number`.
inline devhost::FrameTraits lively_frame(std::uint32_t width, std::uint32_t height,
                                         std::int32_t pixel_type, unsigned number) {
  devhost::FrameTraits traits;
  traits.width = width;
  traits.height = height;
  traits.pixel_type = pixel_type;
  traits.metadata = {{ZV_METADATA_DISPARITY_CORRECTION, 25}};  // empty disparities come out as 1200
  traits.disparity.fx = 600;
  traits.disparity.baseline = 50;
  traits.disparity.unit = 1;
  traits.disparity.bitSize = 16;
  traits.disparity.packMode = 2;
  traits.disparity.dispIntPlace = 8;
  traits.disparity.isDualCamera = 1;
  traits.pixels.resize(std::size_t{width} * height);
  for (std::uint32_t i = 0; i < traits.pixels.size(); ++i) {
    const std::uint32_t x = i % width;
    const std::uint32_t y = i / width;
    const bool hole = (x * 7 + y * 3 + number) % 11 == 0 || x < number % 4;
    const std::uint32_t surface = (x / 9 + y / 7 + number) % 3 * 700;
    traits.pixels[i] = static_cast<std::uint16_t>(hole ? 0 : 1200 + surface + (x + y + number) % 5);
  }
  return traits;
}

}  // namespace filterprocessor

#endif
