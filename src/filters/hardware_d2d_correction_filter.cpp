#include "filters/hardware_d2d_correction_filter.h"

#include <cmath>
#include <optional>

#include "common/saturate.h"
#include "framework/frame_info.h"
#include "framework/frame_process.h"
#include "framework/printed.h"
#include "kernels/kernel_set.h"

namespace filterprocessor {

const char* HardwareD2DCorrectionFilter::get_filter_config_schema(zv_error**) { return ""; }

void HardwareD2DCorrectionFilter::update_filter_config(std::size_t, const char**, zv_error**) {}

zv_frame_t* HardwareD2DCorrectionFilter::filter_process(const zv_frame_t* frame, zv_error** error) {
  return process_frame(frame, error, [this](FrameProcess& host) -> FrameHandle {
    const zv_frame_t* depth = host.depth();
    if (host.call(zv_video_frame_get_pixel_type, depth) != ZV_PIXEL_TYPE_DEPTH)
      return host.deliver_copy();

    if (!cachedProfile || !cachedProfile.fits(host)) {
      cachedProfile.fetch(host);
      const ZVDisparityParam params = host.disparity_params(cachedProfile.get());
      if (!host.failed()) correctionFb = focal_baseline(params);
    }
    const std::optional<std::int64_t> correction = host.disparity_correction(depth);
    if (host.failed()) return nullptr;
    if (!correction) {
      correctionDispOffset = 0.0;
      return host.deliver_copy();
    }
    if (*correction != saturate<std::int64_t>(correctionDispOffset)) {
      correctionDispOffset = static_cast<double>(*correction);
      correctionDirty = true;
    }
    if (correctionDispOffset == 0.0) return host.deliver_copy();

    const std::uint32_t width = host.call(zv_video_frame_get_width, depth);
    const std::uint32_t height = host.call(zv_video_frame_get_height, depth);
    FrameHandle output = host.create_like(depth, true);
    std::uint16_t* pixels = host.pixels(output.get(), width, height);
    const float scale =
        host.call(zv_depth_frame_get_value_scale, static_cast<const zv_frame_t*>(output.get()));
    if (host.failed()) return nullptr;
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
  HostCalls host(error);
  cachedProfile.release(host);
}

void HardwareD2DCorrectionFilter::print_key_params() {
  Printed() << "disp_offset: " << correctionDispOffset << '\n'
            << "invalid_depth: " << correctionInvalidDepth << '\n'
            << "fb: " << correctionFb << '\n';
}

}  // namespace filterprocessor
