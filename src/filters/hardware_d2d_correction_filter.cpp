#include "filters/hardware_d2d_correction_filter.h"

#include <cmath>
#include <iostream>

#include "common/saturate.h"
#include "framework/frame_info.h"
#include "framework/frame_process.h"
#include "kernels/kernel_set.h"

namespace filterprocessor {

namespace {

bool matches(const FrameProcess& host, const zv_stream_profile_t* profile) {
  const std::uint32_t width = host.call(zv_video_frame_get_width, host.depth());
  const std::uint32_t height = host.call(zv_video_frame_get_height, host.depth());
  const std::int32_t format = host.call(zv_frame_get_format, host.depth());
  const std::uint32_t profile_width = host.call(zv_video_stream_profile_get_width, profile);
  const std::uint32_t profile_height = host.call(zv_video_stream_profile_get_height, profile);
  const std::int32_t profile_format = host.call(zv_stream_profile_get_format, profile);
  return width == profile_width && height == profile_height && format == profile_format;
}

}  // namespace

const char* HardwareD2DCorrectionFilter::get_filter_config_schema(zv_error**) { return ""; }

void HardwareD2DCorrectionFilter::update_filter_config(std::size_t, const char**, zv_error**) {}

zv_frame_t* HardwareD2DCorrectionFilter::filter_process(const zv_frame_t* frame, zv_error** error) {
  return process_frame(frame, error, [this](const FrameProcess& host) {
    const zv_frame_t* depth = host.depth();
    if (host.call(zv_video_frame_get_pixel_type, depth) != ZV_PIXEL_TYPE_DEPTH)
      return host.deliver_copy();

    if (!cachedProfile || !matches(host, cachedProfile.get())) {
      if (cachedProfile) host.release(std::move(cachedProfile));
      cachedProfile = host.profile_of(depth);
      const ZVDisparityParam params = host.disparity_params(cachedProfile.get());
      correctionFb = focal_baseline(params);
    }
    constexpr std::int32_t kItem = ZV_METADATA_DISPARITY_CORRECTION;
    if (!host.call(zv_frame_has_metadata, depth, kItem)) {
      correctionDispOffset = 0.0;
      return host.deliver_copy();
    }
    const std::int64_t correction = host.call(zv_frame_get_metadata_value, depth, kItem);
    if (correction != saturate<std::int64_t>(correctionDispOffset)) {
      correctionDispOffset = static_cast<double>(correction);
      correctionDirty = true;
    }
    if (correctionDispOffset == 0.0) return host.deliver_copy();

    const std::uint32_t width = host.call(zv_video_frame_get_width, depth);
    const std::uint32_t height = host.call(zv_video_frame_get_height, depth);
    FrameHandle output = host.create_like(depth, true);
    std::uint16_t* pixels = host.pixels(output.get(), width, height);
    const float scale =
        host.call(zv_depth_frame_get_value_scale, static_cast<const zv_frame_t*>(output.get()));
    // A new profile under an unchanged correction keeps the old depth.
    if (correctionDirty) {
      correctionInvalidDepth = std::round(correctionFb / correctionDispOffset);
      correctionDirty = false;
    }
    active_kernels().correction.clear_depth(pixels, std::size_t{width} * height, scale,
                                            saturate<std::int32_t>(correctionInvalidDepth));
    return host.deliver(std::move(output));
  });
}

void HardwareD2DCorrectionFilter::reset_filter(zv_error** error) {
  correctionDispOffset = correctionInvalidDepth = correctionFb = 0.0;
  correctionDirty = false;
  if (!cachedProfile) return;
  try {
    HostCalls(error).release(std::move(cachedProfile));
  } catch (const OperationFailed&) {
    // The reference is gone and the error stored and printed.
  }
}

void HardwareD2DCorrectionFilter::print_key_params() {
  std::cout << "disp_offset: " << correctionDispOffset << std::endl;
  std::cout << "invalid_depth: " << correctionInvalidDepth << std::endl;
  std::cout << "fb: " << correctionFb << std::endl;
}

}  // namespace filterprocessor
