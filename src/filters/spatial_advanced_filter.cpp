#include "filters/spatial_advanced_filter.h"

#include <limits>
#include <optional>

#include "filterprocessor/spatial.h"
#include "framework/config_values.h"
#include "framework/frame_info.h"
#include "framework/frame_process.h"
#include "framework/printed.h"

namespace filterprocessor {

namespace {
constexpr std::uint8_t kReferenceFractionBits = 8;  // of the codes that disp_diff is given in
}

const char* SpatialAdvancedFilter::get_filter_config_schema(zv_error**) {
  return "magnitude, integer, 1, 5, 1, 1, number of filtering iterations\n"
         "alpha, float, 0.1, 1, 0.01, 0.5, weight for the current pixel value\n"
         "disp_diff, integer, 1, 10000, 1, 160, threshold for non-edge transitions\n"
         "radius, integer, 0, 8, 1, 1, radius of holes in depth image to be filled";
}

void SpatialAdvancedFilter::update_filter_config(std::size_t argc, const char** argv, zv_error** error) {
  const ConfigValues values(argc, argv, error);
  if (!values.count_is(4)) return;
  const auto within = [](auto value, auto min, auto max) { return value >= min && value <= max; };
  const std::int32_t magnitude = values.integer(0);
  const auto alpha = static_cast<float>(values.number(1));
  const std::int32_t disp_diff = values.integer(2);
  const std::int32_t radius = values.integer(3);
  if (!values.in_range(within(magnitude, 1, 5), "magnitude") ||
      !values.in_range(within(alpha, 0.1f, 1.0f), "alpha") ||
      !values.in_range(within(disp_diff, 1, 10000), "disp_diff") ||
      !values.in_range(within(radius, 0, 8), "radius")) {
    return;
  }
  const Parameters wanted = {static_cast<std::uint8_t>(magnitude), alpha,
                             static_cast<std::uint16_t>(disp_diff), static_cast<std::uint16_t>(radius)};
  const std::lock_guard lock(lock_);
  if (wanted == user) return;
  user = wanted;
  paramsDirty = true;
}

bool SpatialAdvancedFilter::check_frame_info_changed(const FrameInfoInner& info) const {
  return !(info == anchor_frame_info);
}

zv_frame_t* SpatialAdvancedFilter::filter_process(const zv_frame_t* frame, zv_error** error) {
  return process_frame(frame, error, [this](FrameProcess& host) -> FrameHandle {
    const zv_frame_t* depth = host.depth();
    host.call(zv_frame_get_format, depth);
    const std::int32_t pixel_type = host.call(zv_video_frame_get_pixel_type, depth);
    const std::uint32_t width = host.call(zv_video_frame_get_width, depth);
    const std::uint32_t height = host.call(zv_video_frame_get_height, depth);
    ProfileHandle profile = host.profile_of(depth);
    std::optional<ZVDisparityParam> disparity;
    float value_scale = 0;
    std::uint8_t available_bits = 0;
    if (pixel_type != ZV_PIXEL_TYPE_LINEAR_DEPTH) {
      disparity = host.disparity_params(profile.get());
      value_scale = host.call(zv_depth_frame_get_value_scale, depth);
      available_bits = host.call(zv_video_frame_get_pixel_available_bit_size, depth);
    }

    if (host.failed()) return nullptr;

    const std::lock_guard lock(lock_);
    current_frame_info.depth_flag = pixel_type;
    current_frame_info.width = width;
    current_frame_info.height = height;
    if (disparity) {
      take_geometry(current_frame_info, *disparity, available_bits);
      current_frame_info.depth_unit = double{value_scale};
    }
    configure(host.slot());
    host.test();

    FrameHandle output = host.create_like(depth, true);
    std::uint16_t* pixels = host.pixels(output.get(), width, height);
    if (host.failed()) return nullptr;
    constexpr std::uint32_t kMostPixels = std::numeric_limits<std::uint16_t>::max();
    std::int32_t status = -1;  // the kernels' sizes are 16 bits
    if (width <= kMostPixels && height <= kMostPixels) {
      const auto w = static_cast<std::uint16_t>(width);
      const auto h = static_cast<std::uint16_t>(height);
      const auto radius = static_cast<std::uint8_t>(working.radius);
      status = pixel_type == ZV_PIXEL_TYPE_DISPARITY
                   // Goes over the frame once, whatever the magnitude.
                   ? depth_api_spatial_filter_origin(pixels, w, h, working.magnitude, radius, 1, 1,
                                                     working.alpha, static_cast<float>(working.disp_diff))
                   : depth_api_spatial_filter_origin_lut(pixels, w, h, table.entries.data(), table.shift,
                                                         static_cast<std::uint8_t>(table.entries.size()),
                                                         working.magnitude, radius, 1, 1, working.alpha);
    }
    host.release(std::move(profile));
    if (host.failed()) return nullptr;
    if (status != 0) {
      host.fail_kernel(std::move(output), "spatial advanced filter error", "SpatialaDvancedFilter");
    }
    return host.deliver(std::move(output));
  });
}

void SpatialAdvancedFilter::configure(zv_error** error) {
  const bool changed = check_frame_info_changed(current_frame_info);
  if (!changed && !paramsDirty) return;
  if (changed) anchor_frame_info = current_frame_info;
  paramsDirty = false;
  updateConfig(current_frame_info, error);
}

void SpatialAdvancedFilter::updateConfig(const FrameInfoInner& info, zv_error** error) {
  const auto refuse = [error](const char* field) {
    report_error(error, "invalid params", "updateConfig", field);
  };
  working = user;
  if (info.width == 0 || info.height == 0) return refuse("frame_info.width||frame_info.height");
  if (info.depth_flag != ZV_PIXEL_TYPE_DISPARITY) {
    if (info.depth_flag == -1) return refuse("frame_info.pixel_type");
    if (info.depth_unit <= 0) return refuse("frame_info.depth_unit");
  }
  if (info.depth_flag != ZV_PIXEL_TYPE_LINEAR_DEPTH && info.fraction_bit_size != kReferenceFractionBits) {
    working.disp_diff =
        rescale_difference(working.disp_diff, kReferenceFractionBits, info.fraction_bit_size);
  }
  if (updateDepthDiffLut(info) != 0) {
    working = user;
    report_error(error, "update depth diff lut error", "updateConfig", "updateDepthDiffLut()");
  }
}

int SpatialAdvancedFilter::updateDepthDiffLut(const FrameInfoInner& info) {
  return table.update(info, working.disp_diff) ? 0 : 1;
}

void SpatialAdvancedFilter::reset_filter(zv_error**) {
  user = {};
  working = user;
  anchor_frame_info = {};
}

void SpatialAdvancedFilter::print_key_params() {
  Printed out;
  const auto print = [&out](const char* heading, const Parameters& p) {
    out << heading << '\n'
        << "alpha:     " << p.alpha << '\n'
        << "disp_diff: " << p.disp_diff << '\n'
        << "magnitude: " << int{p.magnitude} << '\n'
        << "radius:    " << p.radius << '\n';
  };
  print("anchor_params: ", user);
  print("current_filter_params: ", working);
  print_frame_info<int>(out, current_frame_info);
  out << "depth_diff_lut: ";
  for (std::size_t k = 0; k < table.entries.size(); ++k) out << (k == 0 ? "" : " ") << table.entries[k];
  out << '\n' << "depth_shift: " << int{table.shift} << '\n';
}

}  // namespace filterprocessor
