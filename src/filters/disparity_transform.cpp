#include "filters/disparity_transform.h"

#include <cmath>

#include "framework/config_values.h"
#include "framework/errors.h"
#include "kernels/disparity/depth_table.h"

namespace filterprocessor {

// Never configured, an instance clips at what 16 bits hold, not at the schema's defaults.
DisparityTransform::DisparityTransform() : DisparityFilter(65535, 0) {}

const char* DisparityTransform::get_filter_config_schema(zv_error**) {
  return "max_depth, uint32_t, 1, 65535, 1, 10000, value max depth\n"
         "min_depth, uint32_t, 1, 65535, 1, 100, value min depth\n"
         "depth_uint, float, 0.001, 10.0, 0.001, 1.0, value depth uint";
}

void DisparityTransform::update_filter_config(std::size_t argc, const char** argv, zv_error** error) {
  const ConfigValues values(argc, argv, error);
  if (values.count_is(3)) update_depth_limits(values);
}

void DisparityTransform::init_lookup_table(zv_error** error) {
  if (last_params().isDualCamera != 0) {
    stereo_camera_init_lookup_table(error);
  } else {
    mono_camera_init_lookup_table(error);
  }
}

void DisparityTransform::stereo_camera_init_lookup_table(zv_error** error) {
  const std::int32_t format = zv_stream_profile_get_format(cached_profile(), error);
  if (*error != nullptr) return;
  const std::uint8_t mode = last_params().packMode;
  if (mode < 1 || mode > 3) {
    report_error(error, "Unsupported disparity data pack type error", "stereo_camera_init_lookup_table",
                 "stereo_camera_init_lookup_table");
    return;
  }
  const int integer_bits = mode == 3 ? 10 : 8;
  // The packed format keeps depth in 12 bits.
  use_stereo_rule(mode == 1 ? CodeLayout::inverted : CodeLayout::linear,
                  std::ldexp(1.0, last_params().bitSize - integer_bits), mode == 3 ? 1024.0 : 256.0,
                  format == ZV_FORMAT_PACKED_CODE ? 4096.0 : 65536.0);
}

void DisparityTransform::mono_camera_init_lookup_table(zv_error** error) {
  if (use_mono_rule()) return;
  report_error(error, "Unsupported disparity data pack type error", "mono_camera_init_lookup_table",
               "mono_camera_init_lookup_table");
}

FrameHandle DisparityTransform::convert(FrameProcess& host, std::int32_t format) {
  return convert_at_same_size(host, format == ZV_FORMAT_PACKED_CODE);
}

}  // namespace filterprocessor
