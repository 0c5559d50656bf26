#include "filters/open_ni_disparity_transform.h"

#include <cmath>
#include <limits>

#include "filters/depth_converter.h"
#include "framework/config_values.h"
#include "framework/frame_process.h"
#include "kernels/disparity/depth_sampling.h"

namespace filterprocessor {

namespace {

/// How far the principal point moves for the target sizes of the cameras' cropped modes.
float principal_point_shift(std::int32_t width, std::int32_t height) {
  struct Mode {
    std::int32_t width, height;
    float shift;
  };
  constexpr Mode kModes[] = {{270, 200, 25.0f}, {320, 160, 20.0f}, {540, 400, 50.0f}, {640, 320, 40.0f}};
  for (const Mode& mode : kModes) {
    if (mode.width == width && mode.height == height) return mode.shift;
  }
  return 0.0f;
}

}  // namespace

// Unlike DisparityTransform, an instance starts with the schema's limits.
OpenNIDisparityTransform::OpenNIDisparityTransform() : DisparityFilter(10000, 100) {}

const char* OpenNIDisparityTransform::get_filter_config_schema(zv_error**) {
  return "max_depth, uint32_t, 1, 65535, 1, 10000, value max depth\n"
         "min_depth, uint32_t, 1, 65535, 1, 100, value min depth\n"
         "depth_uint, float, 0.001, 10.0, 0.001, 1.0, value depth uint\n"
         "dst_width, integer, 0, 65535, 1, 0, target width of depth frame\n"
         "dst_height, integer, 0, 65535, 1, 0, target height of depth frame\n"
         "scale, float, 0.01, 50, 0.01, 1, scaling ratio of the target frame to the original frame\n"
         "x_cut, integer, 0, 65535, 1, 0, the starting coordinate for cropping in the x direction of the "
         "frame\n"
         "y_cut, integer, 0, 65535, 1, 0, the starting coordinate for cropping in the y direction of the "
         "frame "
         "of the frame\n"
         "x_set, integer, 0, 65535, 1, 0, the length that needs to be set to 0 in the x direction of the "
         "frame\n"
         "y_set, integer, 0, 65535, 1, 0, the length that needs to be set to 0 in the y direction of the "
         "frame";
}

void OpenNIDisparityTransform::update_filter_config(std::size_t argc, const char** argv,
                                                    zv_error** error) {
  const ConfigValues values(argc, argv, error);
  if (!values.count_is(10)) return;
  update_depth_limits(values);

  const auto is_size = [](std::int32_t size) { return size >= 0 && size <= 65535; };
  const std::int32_t width = values.integer(3);
  if (!values.in_range(is_size(width), "dst_width")) return;
  dst_width = width;
  const std::int32_t height = values.integer(4);
  if (!values.in_range(is_size(height), "dst_height")) return;
  dst_height = height;
  const auto ratio = static_cast<float>(values.number(5));
  if (!values.in_range(ratio >= 0.1f && ratio <= 50.0f, "scale")) return;  // stricter than the schema
  scale = ratio;
  x_cut = values.integer(6);
  y_cut = values.integer(7);
  x_set = values.integer(8);
  y_set = values.integer(9);
  samplingEnabled = width != 0 && height != 0;
}

void OpenNIDisparityTransform::init_lookup_table(zv_error** error) {
  stereo_camera_init_lookup_table(error);
}

void OpenNIDisparityTransform::stereo_camera_init_lookup_table(zv_error**) {
  use_stereo_rule(CodeLayout::inverted, std::ldexp(1.0, last_params().bitSize - 8), 256.0, 65536.0);
}

zv_frame_t* OpenNIDisparityTransform::convert(const FrameProcess& host, std::int32_t format) {
  return samplingEnabled ? convert_sampled(host, format, sampling()) : convert_at_same_size(host, false);
}

DepthSampling OpenNIDisparityTransform::sampling() const {
  return {.target_width = dst_width,
          .target_height = dst_height,
          .scale = scale,
          .x_cut = x_cut,
          .y_cut = y_cut,
          .x_set = x_set,
          .y_set = y_set};
}

zv_frame_t* OpenNIDisparityTransform::convert_sampled(const FrameProcess& host, std::int32_t format,
                                                      const DepthSampling& target) {
  const zv_frame_t* depth = host.depth();
  host.call(zv_frame_get_data_size, depth);
  const std::uint8_t bits = host.call(zv_video_frame_get_pixel_available_bit_size, depth);
  const auto fail_sampling = [&] {
    host.fail("Frame sampling process error", "filter_process", "frameType");
  };
  const std::int64_t bytes = std::int64_t{target.target_width} * target.target_height * 2;
  if (bytes > std::numeric_limits<std::uint32_t>::max()) fail_sampling();
  const auto size = static_cast<std::uint32_t>(bytes);

  FrameHandle output = host.create_frame(host.received_type(), format, size);
  host.call(zv_frame_copy_info, depth, output.get());
  // The copied description says disparity, and depth must not travel on as that.
  host.call(zv_video_frame_set_pixel_type, output.get(), std::int32_t{ZV_PIXEL_TYPE_DEPTH});
  const std::uint32_t width = host.call(zv_video_frame_get_width, depth);
  const std::uint32_t height = host.call(zv_video_frame_get_height, depth);
  const std::uint16_t* source = host.pixels(depth, width, height);
  std::uint16_t* pixels = host.pixels(output.get(), size / 2, 1);
  match_bit_size(host, bits);
  if (!sample(target, source, width, height, pixels)) fail_sampling();

  ProfileHandle profile = host.copy_profile_of(depth);
  ZVCameraIntrinsic intrinsic = host.call(zv_video_stream_profile_get_intrinsic,
                                          static_cast<const zv_stream_profile_t*>(profile.get()));
  intrinsic.cx -= principal_point_shift(target.target_width, target.target_height);
  intrinsic.width = static_cast<std::int16_t>(target.target_width);
  intrinsic.height = static_cast<std::int16_t>(target.target_height);
  host.call(zv_video_stream_profile_set_intrinsic, profile.get(), intrinsic);
  host.set_size_and_attach(std::move(profile), static_cast<std::uint32_t>(target.target_width),
                           static_cast<std::uint32_t>(target.target_height), output.get());
  host.call(zv_frame_update_data, output.get(), static_cast<const void*>(pixels), size);
  set_depth_attributes(host, output.get());
  return host.deliver(std::move(output));
}

bool OpenNIDisparityTransform::frameSamplingProcess(const std::uint16_t* src, int width, int height,
                                                    std::uint16_t* dst) {
  if (width <= 0 || height <= 0) return false;
  return sample(sampling(), src, static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height),
                dst);
}

bool OpenNIDisparityTransform::sample(const DepthSampling& target, const std::uint16_t* src,
                                      std::uint32_t width, std::uint32_t height, std::uint16_t* dst) {
  if (width == 0 || height == 0 || target.target_width == 0 || target.target_height == 0) return false;
  if (double{target.scale} < 0.001 || d2d_lut() == nullptr) return false;
  clear_first_entry();
  sample_depth(target, src, width, height, d2d_lut()->entries(), dst);
  return true;
}

}  // namespace filterprocessor
