#include "filters/hole_filling_filter.h"

#include <iterator>
#include <optional>

#include "filterprocessor/hole_filling.h"
#include "framework/config_values.h"
#include "framework/frame_process.h"
#include "framework/printed.h"

namespace filterprocessor {

namespace {

/// A larger disparity is nearer, so nearest and farthest change places for disparity pixels.
std::optional<std::int32_t> kernel_mode(std::uint32_t filter_mode, std::int32_t pixel_type) {
  const bool larger_is_nearer = pixel_type == ZV_PIXEL_TYPE_DISPARITY;
  switch (filter_mode) {
    case 0:
      return DEPTH_API_HOLE_FILL_TOP;
    case 1:
      return larger_is_nearer ? DEPTH_API_HOLE_FILL_LARGER : DEPTH_API_HOLE_FILL_SMALLER;
    case 2:
      return larger_is_nearer ? DEPTH_API_HOLE_FILL_SMALLER : DEPTH_API_HOLE_FILL_LARGER;
    default:
      return std::nullopt;
  }
}

}  // namespace

const char* HoleFillingFilter::get_filter_config_schema(zv_error**) {
  return "hole_filling_mode, integer, 0, 2, 1, 0, "
         "ZV_HOLE_FILL_TOP/ZV_HOLE_FILL_NEAREST/ZV_HOLE_FILL_FAREST\n";
}

void HoleFillingFilter::update_filter_config(std::size_t argc, const char** argv, zv_error** error) {
  const ConfigValues values(argc, argv, error);
  if (!values.count_is(1)) return;
  const std::int32_t mode = values.integer(0);
  if (mode < 0 || mode > 2) return values.reject("invalid hole filling mode params", "argv");
  hole_filling_mode = static_cast<std::uint32_t>(mode);
}

zv_frame_t* HoleFillingFilter::filter_process(const zv_frame_t* frame, zv_error** error) {
  return process_frame(frame, error, [this](FrameProcess& host) -> FrameHandle {
    const std::uint32_t width = host.call(zv_video_frame_get_width, host.depth());
    const std::uint32_t height = host.call(zv_video_frame_get_height, host.depth());
    host.call(zv_frame_get_format, host.depth());
    const std::int32_t pixel_type = host.call(zv_video_frame_get_pixel_type, host.depth());
    FrameHandle output = host.create_like(host.depth(), true);
    std::uint16_t* pixels = host.pixels(output.get(), width, height);
    if (host.failed()) return nullptr;

    if (const auto mode = kernel_mode(hole_filling_mode, pixel_type)) {
      if (depth_api_hole_filling_filter(pixels, static_cast<std::int32_t>(width), height, *mode) != 0) {
        host.fail_kernel(std::move(output), "hole filling filter error", "HoleFillingFilter");
      }
    } else {
      // The frame goes on unfilled beside this error; only a set is lost to it, at the next host call's
      // test.
      report_error(host.slot(), "invalid hole filling mode,please check the parameters", "filter_process",
                   "hole filling mode");
    }
    return host.deliver(std::move(output));
  });
}

void HoleFillingFilter::reset_filter(zv_error**) { hole_filling_mode = 0; }

void HoleFillingFilter::print_key_params() {
  constexpr const char* kModes[] = {"top", "nearest", "farest"};
  if (hole_filling_mode < std::size(kModes)) {
    Printed() << "hole filling mode: " << kModes[hole_filling_mode] << '\n';
  }
}

}  // namespace filterprocessor
