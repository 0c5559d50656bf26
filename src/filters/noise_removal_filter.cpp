#include "filters/noise_removal_filter.h"

#include <optional>

#include "common/saturate.h"
#include "filterprocessor/disparity_codes.h"
#include "filterprocessor/speckle.h"
#include "filters/size_ratio.h"
#include "framework/config_values.h"
#include "framework/frame_info.h"
#include "framework/frame_process.h"
#include "framework/printed.h"

namespace filterprocessor {

namespace {

/// The code that a camera gives to pixels it could not match.
std::uint16_t invalid_code(std::uint8_t pack_mode, bool dual_camera) {
  if (dual_camera || pack_mode == 1) return 0;
  return pack_mode == 4 ? ZV_DISPARITY_UNMATCHED : ZV_DISPARITY_UNMATCHED_SIGNED;
}

}  // namespace

const char* NoiseRemovalFilter::get_filter_config_schema(zv_error**) {
  return "max_size, integer, 1, 1000, 1, 80, Max size of noise pixels\n"
         "min_diff, integer, 1, 10000, 1, 256, difference threshold between neighbor pixels\n"
         "width, integer, 1, 1280, 1, 848, depth map width of the above 2 parameters corresponded\n"
         "height, integer, 1, 800, 1, 480, depth map height of the above 2 parameters corresponded";
}

void NoiseRemovalFilter::update_filter_config(std::size_t argc, const char** argv, zv_error** error) {
  const ConfigValues values(argc, argv, error);
  if (!values.count_is(4)) return;
  const auto within = [](std::int32_t value, std::int32_t max) { return value >= 1 && value <= max; };
  const std::int32_t max_size = values.integer(0);
  const std::int32_t min_diff = values.integer(1);
  const std::int32_t width = values.integer(2);
  const std::int32_t height = values.integer(3);
  if (!values.in_range(within(max_size, 1000), "max_size") ||
      !values.in_range(within(min_diff, 10000), "min_diff") ||
      !values.in_range(within(width, 1280), "width") ||
      !values.in_range(within(height, 1024), "height")) {  // wider than the schema's 800
    return;
  }
  const std::lock_guard lock(lock_);
  Parameters wanted = anchor;
  wanted.max_size = static_cast<std::uint16_t>(max_size);
  wanted.min_diff = static_cast<std::uint16_t>(min_diff);
  wanted.width = static_cast<std::uint64_t>(width);
  wanted.height = static_cast<std::uint64_t>(height);
  if (wanted == anchor) return;
  anchor = wanted;
  config_changed = true;
}

void NoiseRemovalFilter::update_anchor_fraction_bitsize(std::uint8_t bits) {
  const std::lock_guard lock(lock_);
  if (bits == anchor.fraction_bits) return;
  anchor.fraction_bits = bits;
  config_changed = true;
}

bool NoiseRemovalFilter::check_frame_info_changed(const FrameInfoInner& info) const {
  return !(info == last_frame_info);
}

zv_frame_t* NoiseRemovalFilter::filter_process(const zv_frame_t* frame, zv_error** error) {
  return process_frame(frame, error, [this](FrameProcess& host) -> FrameHandle {
    const zv_frame_t* depth = host.depth();
    host.call(zv_frame_get_format, depth);
    const std::int32_t pixel_type = host.call(zv_video_frame_get_pixel_type, depth);
    const std::uint32_t width = host.call(zv_video_frame_get_width, depth);
    const std::uint32_t height = host.call(zv_video_frame_get_height, depth);
    const float value_scale = host.call(zv_depth_frame_get_value_scale, depth);
    ProfileHandle profile = host.profile_of(depth);
    std::optional<ZVDisparityParam> disparity;
    std::uint8_t available_bits = 0;
    if (pixel_type != ZV_PIXEL_TYPE_LINEAR_DEPTH) {
      disparity = host.disparity_params(profile.get());
      available_bits = host.call(zv_video_frame_get_pixel_available_bit_size, depth);
      if (!host.failed()) update_anchor_fraction_bitsize(8);
    }
    if (host.failed()) return nullptr;

    const std::lock_guard lock(lock_);
    current_frame_info.depth_flag = pixel_type;
    current_frame_info.width = width;
    current_frame_info.height = height;
    current_frame_info.depth_unit = double{value_scale};
    if (disparity) {
      take_geometry(current_frame_info, *disparity, available_bits);
    }
    configure(current_frame_info, host);

    FrameHandle output = host.create_like(depth, true);
    std::uint16_t* pixels = host.pixels(output.get(), width, height);
    if (host.failed()) return nullptr;
    int status = -1;
    // A failed configuration is not tried again for the same kind of frame. It can leave no buffer, or an
    // older one, which serves if it is large enough.
    if (buffer.holds(width, height)) {
      const bool is_disparity = pixel_type == ZV_PIXEL_TYPE_DISPARITY;
      const std::uint16_t invalid = is_disparity
                                        ? invalid_code(disparity->packMode, disparity->isDualCamera != 0)
                                        : std::uint16_t{0};
      const auto table_size = static_cast<std::uint8_t>(is_disparity ? 0 : table.entries.size());
      status = depth_api_softfilter(buffer.data(), pixels, nullptr, static_cast<std::int32_t>(width),
                                    static_cast<std::int32_t>(height),
                                    is_disparity ? nullptr : table.entries.data(), table.shift,
                                    table_size, working.min_diff, working.max_size, 4, 4, invalid, 1);
    }
    host.release(std::move(profile));
    if (host.failed()) return nullptr;
    if (status != 0) {
      host.fail_kernel(std::move(output), "noise removal filter error", "NoiseRemovalFilter");
    }
    return host.deliver(std::move(output));
  });
}

void NoiseRemovalFilter::configure(const FrameInfoInner& info, HostCalls& host) {
  const bool changed = check_frame_info_changed(info);
  if (changed) last_frame_info = info;
  if (!changed && !config_changed) return;
  config_changed = false;
  updateConfig(info, host.slot());
  host.test();
  if (host.failed() || buffer.holds(info.width, info.height)) return;
  config_changed = true;  // the next frame tries again
  host.fail_without_memory();
}

void NoiseRemovalFilter::updateConfig(const FrameInfoInner& info, zv_error** error) {
  const auto refuse = [error](const char* field) {
    report_error(error, "invalid params", "updateConfig", field);
  };
  working = anchor;
  if (info.width == 0 || info.height == 0) return refuse("frame_info.width||frame_info.height");
  const bool other_size = info.width != anchor.width || info.height != anchor.height;
  if (other_size && info.depth_flag == ZV_PIXEL_TYPE_DEPTH && !(info.bxf > 0))
    return refuse("frame_info.bxf");
  if (info.depth_flag != ZV_PIXEL_TYPE_DISPARITY && !(info.depth_unit > 0)) {
    return refuse("frame_info.depth_unit");
  }
  // One byte more than the kernels need, for any that flags one region a pixel from label 1 on.
  if (!buffer.fit(info.width, info.height, 9, 1)) return;

  const SizeRatio ratio(info.width, info.height, anchor.width, anchor.height);
  if (ratio.too_small()) return refuse("frame_info.width||frame_info.height");
  if (info.depth_flag != ZV_PIXEL_TYPE_LINEAR_DEPTH && info.fraction_bit_size != anchor.fraction_bits) {
    working.min_diff = rescale_difference(working.min_diff, anchor.fraction_bits, info.fraction_bit_size);
  }
  working.width = info.width;
  working.height = info.height;
  const float max_size = ratio.x * ratio.y * static_cast<float>(working.max_size);
  working.max_size = static_cast<std::uint16_t>(saturate<std::int64_t>(max_size));
  working.fraction_bits = info.fraction_bit_size;
  if (updateDepthDiffLut(info) != 0) {
    report_error(error, "update depth diff lut error", "updateConfig", "updateDepthDiffLut()");
  }
}

int NoiseRemovalFilter::updateDepthDiffLut(const FrameInfoInner& info) {
  return table.update(info, working.min_diff) ? 0 : 1;
}

void NoiseRemovalFilter::reset_filter(zv_error**) {
  buffer.release();
  anchor = {};
  last_frame_info = {.width = 848, .height = 480};
  working = anchor;
}

void NoiseRemovalFilter::print_key_params() {
  Printed out;
  const auto print = [&out](const char* heading, const Parameters& p) {
    out << heading << '\n'
        << "width:    " << p.width << '\n'
        << "height:   " << p.height << '\n'
        << "max_size: " << p.max_size << '\n'
        << "min_diff: " << p.min_diff << '\n';
  };
  print("anchor_params: ", anchor);
  print("current_filter_params: ", working);
  // The 8-bit values go out as raw characters: readers of this print know them so.
  print_frame_info<unsigned char>(out, current_frame_info);
  out << "depth_diff_lut: \n";
  for (const std::uint16_t entry : table.entries) out << entry << ' ';
  out << '\n' << "depth_shift: " << table.shift << '\n';
}

}  // namespace filterprocessor
