#include "filters/temporal_filter.h"

#include "filterprocessor/temporal.h"
#include "framework/config_values.h"
#include "framework/frame_process.h"
#include "framework/printed.h"

namespace filterprocessor {

const char* TemporalFilter::get_filter_config_schema(zv_error**) {
  return "diff_scale, float, 0.1, 1, 0.01, 0.1, difference scale for neighbour frame\n"
         "weight, float, 0.1, 1, 0.01, 0.4, weight for the current frame value";
}

void TemporalFilter::update_filter_config(std::size_t argc, const char** argv, zv_error** error) {
  const ConfigValues values(argc, argv, error);
  if (!values.count_is(2)) return;
  const auto within = [](float value) { return value >= 0.1f && value <= 1.0f; };  // refuses NaN
  const auto scale = static_cast<float>(values.number(0));
  if (!values.in_range(within(scale), "diff_scale")) return;
  diff_scale = scale;  // stays even if the weight is refused
  const auto wanted_weight = static_cast<float>(values.number(1));
  if (!values.in_range(within(wanted_weight), "weight")) return;
  weight = wanted_weight;
}

zv_frame_t* TemporalFilter::filter_process(const zv_frame_t* frame, zv_error** error) {
  return process_frame(frame, error, [this](FrameProcess& host) -> FrameHandle {
    const std::uint32_t width = host.call(zv_video_frame_get_width, host.depth());
    const std::uint32_t height = host.call(zv_video_frame_get_height, host.depth());
    if (host.failed()) return nullptr;
    initBuffers(width, height);
    if (!history.holds(width, height)) host.fail_without_memory();
    FrameHandle output = host.create_like(host.depth(), true);
    std::uint16_t* pixels = host.pixels(output.get(), width, height);
    if (host.failed()) return nullptr;
    if (depth_api_temporal_filter(pixels, static_cast<std::int32_t>(width),
                                  static_cast<std::int32_t>(height), history.data(), diff_scale,
                                  weight) != 0) {
      host.fail_kernel(std::move(output), "temporal filter error", "TemporalFilter");
    }
    return host.deliver(std::move(output));
  });
}

void TemporalFilter::initBuffers(std::uint64_t width, std::uint64_t height) {
  history.fit(width, height);
}

void TemporalFilter::reset_filter(zv_error**) {
  history.release();
  diff_scale = 0.1f;
  weight = 0.4f;
}

void TemporalFilter::print_key_params() {
  Printed() << "diff_scale: " << diff_scale << '\n' << "weight:     " << weight << '\n';
}

}  // namespace filterprocessor
