#include "filters/depth_resize.h"

#include <limits>

#include "common/saturate.h"
#include "framework/config_values.h"
#include "framework/frame_process.h"
#include "framework/printed.h"
#include "kernels/kernel_set.h"

namespace filterprocessor {

namespace {

struct TargetSize {
  std::int32_t width;
  std::int32_t height;
};

template <typename Size>
TargetSize target_size(Size width, Size height, const DepthResize::ProcessParam& param) {
  return {resized(static_cast<float>(width), param.scale, param.ex_left, param.ex_right),
          resized(static_cast<float>(height), param.scale, param.ex_top, param.ex_bottom)};
}

}  // namespace

const char* DepthResize::get_filter_config_schema(zv_error**) {
  return "dst_width, integer, 1, 65535, 1, 1280, target width of depth frame\n"
         "dst_height, integer, 1, 65535, 1, 720, target height of depth frame\n"
         "scale, float, 0.01, 50, 0.01, 1, scaling ratio of the target frame to the original frame\n"
         "ex_left, integer, -640, 640, 1, 0, extension on the left of the frame\n"
         "ex_right, integer,-640, 640, 1, 0, extension on the right of the frame\n"
         "ex_top, integer, -400, 400, 1, 0, extension on the top of the frame\n"
         "ex_bottom, integer, -400, 400, 1, 0, extension on the bottom of the frame";
}

void DepthResize::update_filter_config(std::size_t argc, const char** argv, zv_error** error) {
  const ConfigValues values(argc, argv, error);
  if (!values.count_is(7)) return;
  const auto number = [&](std::size_t index) { return static_cast<float>(values.number(index)); };
  const auto is_size = [](float size) { return size >= 1.0f && size <= 65535.0f; };
  const float width = number(0);
  if (!values.in_range(is_size(width), "dst_width")) return;
  dst_width = static_cast<std::uint64_t>(width);
  const float height = number(1);
  if (!values.in_range(is_size(height), "dst_height")) return;
  dst_height = static_cast<std::uint64_t>(height);
  const float scale = number(2);
  if (!values.in_range(scale >= 0.1f && scale <= 50.0f, "scale")) return;  // stricter than the schema
  process_param = {.scale = scale,
                   .ex_left = saturate<std::int32_t>(number(3)),
                   .ex_top = saturate<std::int32_t>(number(5)),
                   .ex_right = saturate<std::int32_t>(number(4)),
                   .ex_bottom = saturate<std::int32_t>(number(6))};
}

zv_frame_t* DepthResize::filter_process(const zv_frame_t* frame, zv_error** error) {
  return process_frame(frame, error, [this](FrameProcess& host) -> FrameHandle {
    const zv_frame_t* depth = host.depth();
    const std::uint32_t width = host.call(zv_video_frame_get_width, depth);
    const std::uint32_t height = host.call(zv_video_frame_get_height, depth);
    if (host.failed()) return nullptr;
    const TargetSize target = target_size(width, height, process_param);
    if (static_cast<std::uint64_t>(target.width) != dst_width ||
        static_cast<std::uint64_t>(target.height) != dst_height) {
      host.fail("incorrect config schema", "filter_process", "DepthResize");
      return nullptr;
    }
    const std::uint64_t bytes = dst_width * dst_height * sizeof(std::uint16_t);
    if (bytes > std::numeric_limits<std::uint32_t>::max()) {
      host.fail("depth resize error", "filter_process", "DepthResize", ZV_EXCEPTION_KERNEL);
      return nullptr;
    }
    const auto size = static_cast<std::uint32_t>(bytes);
    const std::int32_t format = host.call(zv_frame_get_format, depth);
    FrameHandle output = host.create_frame(host.received_type(), format, size);
    host.call(zv_frame_copy_info, depth, output.get());
    const std::uint16_t* source = host.pixels(depth, width, height);
    std::uint16_t* pixels = host.pixels(output.get(), dst_width, dst_height);
    if (host.failed()) return nullptr;
    if (depthProcess(source, static_cast<std::int32_t>(width), static_cast<std::int32_t>(height),
                     process_param, pixels, target.width, target.height) != 0) {
      host.fail_kernel(std::move(output), "depth resize error", "DepthResize");
      return nullptr;
    }

    ProfileHandle profile = host.copy_profile_of(depth);
    host.set_size_and_attach(std::move(profile), static_cast<std::uint32_t>(target.width),
                             static_cast<std::uint32_t>(target.height), output.get());
    host.call(zv_frame_update_data, output.get(), static_cast<const void*>(pixels), size);
    return host.deliver(std::move(output));
  });
}

std::int32_t DepthResize::depthProcess(const std::uint16_t* src, std::int32_t src_width,
                                       std::int32_t src_height, ProcessParam param, std::uint16_t* dst,
                                       std::int32_t target_width, std::int32_t target_height) {
  if (src_width == 0 || src_height == 0 || target_width == 0 || target_height == 0) return -1;
  if (double{param.scale} < 0.001) return -2;
  const TargetSize expected = target_size(src_width, src_height, param);
  if (expected.width != target_width || expected.height != target_height) return -3;
  if (target_width < 0 || target_height < 0) return 0;  // no pixels
  active_kernels().resize.resize(src, resize_axis(src_width, target_width, param.scale, param.ex_left),
                                 resize_axis(src_height, target_height, param.scale, param.ex_top), dst);
  return 0;
}

void DepthResize::reset_filter(zv_error**) {
  dst_width = 1280;
  dst_height = 720;
  process_param = {.scale = 1.0f};
}

void DepthResize::print_key_params() {
  Printed() << "dst_width:     " << dst_width << '\n'
            << "dst_height:    " << dst_height << '\n'
            << "process_param: " << '\n'
            << "scale:         " << process_param.scale << '\n'
            << "ex_top:        " << process_param.ex_top << '\n'
            << "ex_bottom:     " << process_param.ex_bottom << '\n'
            << "ex_left:       " << process_param.ex_left << '\n'
            << "ex_right:      " << process_param.ex_right << '\n';
}

}  // namespace filterprocessor
