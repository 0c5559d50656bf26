#include "virtual_camera.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

#include "block_matching.h"
#include "camera_scene.h"
#include "disparity_code.h"
#include "hash_noise.h"

namespace devhost {

namespace {

constexpr double kReferencePlane = 1000;

void require(bool holds, const std::string& field, const std::string& expected) {
  if (!holds) throw std::invalid_argument("camera " + field + " has to be " + expected);
}

CameraConfig completed(CameraConfig config) {
  const bool packed = config.format == ZV_FORMAT_PACKED_CODE;
  const unsigned mode = config.pack_mode;
  if (config.fx == 0) config.fx = 0.7 * config.width;
  if (config.bit_size == 0) {
    config.bit_size = packed ? 12 : mode == 1 || (mode == 2 && !config.dual) ? 14 : 16;
  }
  require(config.width >= 64 && config.width <= 4096, "width", "64 to 4096");
  require(config.height >= 48 && config.height <= 4096, "height", "48 to 4096");
  require(config.baseline >= 5 && config.baseline <= 500, "baseline", "5 to 500");
  require(config.fx >= 0.25 * config.width && config.fx <= 4.0 * config.width, "fx",
          "0 or 0.25 to 4 times the width");
  require(config.format == 0 || packed, "format", "0 or 34");
  require(mode == 1 || mode == 2 || mode == (config.dual ? 3 : 4), "pack_mode",
          config.dual ? "1, 2 or 3 with two cameras" : "1, 2 or 4 with one camera");
  const unsigned least = config.dual || packed || mode == 1 ? 11 : mode == 2 ? 14 : 16;
  const unsigned most = packed ? 12 : 16;
  require(config.bit_size >= least && config.bit_size <= most, "bit_size",
          "0 or " + std::to_string(least) + " to " + std::to_string(most) + " here");
  const std::int64_t correction = config.disparity_correction.value_or(0);
  const auto within = [](float value, double limit) {
    return value >= 0 && static_cast<double>(value) <= limit;
  };
  require(within(config.texture, 1), "texture", "0 to 1");
  require(within(config.faults.noise, 4), "noise", "0 to 4");
  require(within(config.faults.speckle, 0.3f), "speckle", "0 to 0.3");
  require(within(config.faults.dropouts, 1), "dropouts", "0 to 1");
  require(correction >= -128 && correction <= 128, "disparity_correction", "-128 to 128");
  return config;
}

ZVDisparityParam record_of(const CameraConfig& config) {
  ZVDisparityParam record = {};
  record.zpd = kReferencePlane;
  record.zpps = kReferencePlane / config.fx;
  record.baseline = config.baseline;
  record.fx = config.fx;
  record.bitSize = config.bit_size;
  record.unit = 1;
  record.packMode = config.pack_mode;
  record.dispIntPlace = config.pack_mode == 3 ? 10 : config.pack_mode == 1 ? 9 : 8;
  record.isDualCamera = config.dual ? 1 : 0;
  const double fb = config.fx * static_cast<double>(config.baseline);
  // Unsigned codes of one camera count from infinity: nothing behind the reference plane would have one.
  const bool is_signed = config.pack_mode == 1 || has_signed_codes(record);
  if (!config.dual && !is_signed) {
    record.dispOffset = static_cast<float>(-fb / record.zpd);
  }
  return record;
}

View with_margin(const CameraConfig& config, double eye_x) {
  return {config.width + 2 * kMatchMargin,         config.height + 2 * kMatchMargin,         config.fx,
          (config.width - 1) / 2.0 + kMatchMargin, (config.height - 1) / 2.0 + kMatchMargin, eye_x};
}

}  // namespace

VirtualCamera::VirtualCamera(const CameraConfig& config)
    : config_(completed(config)), parameters_(record_of(config_)) {
  const double nearest = std::ceil(config_.fx * static_cast<double>(config_.baseline) / kNearest) + 1;
  disparities_ = static_cast<std::uint32_t>(std::min(nearest, config_.width / 2.0));
}

std::uint16_t VirtualCamera::invalid_pixel() const { return DisparityCode(parameters_, 0).invalid(); }

CameraFrame VirtualCamera::frame(unsigned index) const {
  const bool moves = config_.motion != Motion::still;
  const Scene scene(config_.seed, moves ? index : 0, static_cast<double>(config_.texture));
  const double eye_x = config_.motion == Motion::camera ? 90 * swing(index, 30) : 0;
  const auto noise = [&](int camera) { return hash(config_.seed, index, camera); };
  const Picture left = scene.render(with_margin(config_, eye_x), noise(0), config_.faults.any());
  const auto baseline = static_cast<double>(config_.baseline);
  const Picture right = scene.render(with_margin(config_, eye_x + baseline), noise(1));
  Match match = match_blocks(left.grey, right.grey, {config_.width, config_.height, disparities_});
  if (config_.faults.any()) add_faults(config_.faults, {left, disparities_}, noise(2), match);

  const bool packed = config_.format == ZV_FORMAT_PACKED_CODE;
  const DisparityCode encode(parameters_, static_cast<double>(config_.disparity_correction.value_or(0)));
  const std::size_t count = match.disparity.size();
  std::vector<std::uint16_t> pixels(count), truth(count);
  for (std::size_t i = 0; i < count; ++i) {
    const auto disparity = static_cast<double>(match.disparity[i]);
    const std::uint16_t code = disparity > 0 ? encode(disparity) : encode.invalid();
    const unsigned confidence = code != encode.invalid() ? match.confidence[i] : 0;
    pixels[i] = static_cast<std::uint16_t>(packed ? code * 16u + confidence : code);

    const std::size_t row = i / config_.width + kMatchMargin, column = i % config_.width + kMatchMargin;
    const auto z = static_cast<double>(left.depth[row * left.width + column]);
    if (z >= kNearest && z <= kFarthest) truth[i] = static_cast<std::uint16_t>(std::lround(z));
  }

  FrameTraits traits;
  traits.format = config_.format;
  traits.width = config_.width;
  traits.height = config_.height;
  traits.pixel_type = ZV_PIXEL_TYPE_DISPARITY;
  traits.bits = config_.bit_size;
  traits.pixels = std::move(pixels);
  traits.disparity = parameters_;
  const auto focal_length = static_cast<float>(config_.fx);
  traits.intrinsic = {focal_length,
                      focal_length,
                      static_cast<float>(config_.width - 1) / 2,
                      static_cast<float>(config_.height - 1) / 2,
                      static_cast<std::int16_t>(config_.width),
                      static_cast<std::int16_t>(config_.height)};
  if (config_.disparity_correction) {
    traits.metadata[ZV_METADATA_DISPARITY_CORRECTION] = *config_.disparity_correction;
  }
  return {std::move(traits), std::move(truth)};
}

}  // namespace devhost
