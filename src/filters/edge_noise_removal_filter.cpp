#include "filters/edge_noise_removal_filter.h"

#include "common/saturate.h"
#include "filterprocessor/margin.h"
#include "filters/size_ratio.h"
#include "framework/config_values.h"
#include "framework/frame_process.h"
#include "framework/printed.h"

namespace filterprocessor {

const char* EdgeNoiseRemovalFilter::get_filter_config_schema(zv_error**) {
  return "margin_x_th, integer, 1, 640, 1, 6, Horizontal threshold settings \n"
         "margin_y_th, integer, 1, 400, 1, 6, Vertical threshold settings\n"
         "limit_x_th, integer, 1, 640, 1, 70, Maximum horizontal threshold\n"
         "limit_y_th, integer, 1, 400, 1, 30, Maximum vertical threshold\n"
         "enable_vertical_direction, bool, 0, 1, 1, 0, whether vertical threshold is enable or not\n"
         "width, integer, 1, 1280, 1, 1280, depth map width of the above parameters corresponded\n"
         "height, integer, 1, 800, 1, 800, depth map height of the above parameters corresponded";
}

void EdgeNoiseRemovalFilter::update_filter_config(std::size_t argc, const char** argv, zv_error** error) {
  const ConfigValues values(argc, argv, error);
  if (!values.count_is(7)) return;
  bool accepted = true;
  auto next = [&, index = std::size_t{0}](std::int32_t min, std::int32_t max, const char* name) mutable {
    const std::int32_t value = values.integer(index++);
    accepted = accepted && values.in_range(value >= min && value <= max, name);
    return static_cast<std::uint32_t>(value);
  };
  Parameters wanted;
  wanted.margin_x_th = next(1, 640, "margin_x_th");
  wanted.margin_y_th = next(1, 400, "margin_y_th");
  wanted.limit_x_th = next(1, 640, "limit_x_th");
  wanted.limit_y_th = next(1, 400, "limit_y_th");
  wanted.enable_vertical_direction = next(0, 1, "enable_vertical_direction") != 0;
  wanted.width = next(1, 1280, "width");
  wanted.height = next(1, 1024, "height");  // wider than the schema's 800
  if (!accepted) return;

  const std::lock_guard lock(lock_);
  if (wanted == user) return;
  user = wanted;
  paramsDirty = true;
}

bool EdgeNoiseRemovalFilter::check_frame_info_changed(std::uint32_t width, std::uint32_t height) const {
  return working.height != width || working.width != height;
}

zv_frame_t* EdgeNoiseRemovalFilter::filter_process(const zv_frame_t* frame, zv_error** error) {
  return process_frame(frame, error, [this](FrameProcess& host) -> FrameHandle {
    const std::uint32_t width = host.call(zv_video_frame_get_width, host.depth());
    const std::uint32_t height = host.call(zv_video_frame_get_height, host.depth());

    if (host.failed()) return nullptr;

    const std::lock_guard lock(lock_);
    if (paramsDirty || check_frame_info_changed(width, height)) {
      paramsDirty = false;
      working = updateConfig(width, height, host.slot());
      host.test();
    }

    FrameHandle output = host.create_like(host.depth(), true);
    std::uint16_t* pixels = host.pixels(output.get(), width, height);
    if (host.failed()) return nullptr;
    // The working size holds as many pixels as the frame even where it lies across it.
    const auto number = [](std::uint32_t value) { return static_cast<std::int32_t>(value); };
    const std::int32_t status =
        working.enable_vertical_direction != 0
            ? depth_api_margin_filter(pixels, number(working.width), number(working.height),
                                      number(working.margin_x_th), number(working.margin_y_th),
                                      number(working.limit_x_th), number(working.limit_y_th))
            : depth_api_horizontal_margin_filter(pixels, number(working.width), number(working.height),
                                                 number(working.margin_x_th), number(working.limit_x_th));
    if (status != 0) {
      host.fail_kernel(std::move(output), "edge noise removal filter error", "EdgeNoiseRemovalFilter");
    }
    return host.deliver(std::move(output));
  });
}

EdgeNoiseRemovalFilter::Parameters EdgeNoiseRemovalFilter::updateConfig(std::uint32_t width,
                                                                        std::uint32_t height,
                                                                        zv_error** error) const {
  const auto refuse = [&] {
    report_error(error, "invalid params", "updateConfig", "width||height");
    return user;
  };
  if (width == 0 || height == 0) return refuse();
  if (width == user.width && height == user.height) return user;
  const SizeRatio ratio(width, height, user.width, user.height);
  if (ratio.too_small()) return refuse();
  const auto scaled = [](float scale, std::uint32_t value) {
    return saturate<std::uint32_t>(scale * static_cast<float>(value));
  };
  Parameters result = user;
  result.width = width;
  result.height = height;
  result.margin_x_th = scaled(ratio.x, user.margin_x_th);
  result.margin_y_th = scaled(ratio.y, user.margin_y_th);
  result.limit_x_th = scaled(ratio.x, user.limit_x_th);
  result.limit_y_th = scaled(ratio.y, user.limit_y_th);
  return result;
}

void EdgeNoiseRemovalFilter::reset_filter(zv_error**) {
  user = {};
  working = user;
  paramsDirty = false;
}

void EdgeNoiseRemovalFilter::print_key_params() {
  Printed out;
  const auto print = [&out](const char* heading, const Parameters& p) {
    out << heading << '\n'
        << "enable_direction: " << int{p.enable_vertical_direction} << '\n'
        << "limit_x_th:       " << p.limit_x_th << '\n'
        << "limit_y_th:       " << p.limit_y_th << '\n'
        << "margin_x_th:      " << p.margin_x_th << '\n'
        << "margin_y_th:      " << p.margin_y_th << '\n';
  };
  print("anchor_params: ", user);
  print("current_filter_params: ", working);
}

}  // namespace filterprocessor
