#ifndef FILTERPROCESSOR_FILTERS_OPEN_NI_DISPARITY_TRANSFORM_H
#define FILTERPROCESSOR_FILTERS_OPEN_NI_DISPARITY_TRANSFORM_H

#include "filters/disparity_filter.h"

namespace filterprocessor {

/// Turns disparity frames into depth frames, always by the stereo rule of pack mode 1, and optionally
/// samples a part of them at another scale into a frame of another size.
class FILTERPROCESSOR_API OpenNIDisparityTransform : public DisparityFilter {
 public:
  OpenNIDisparityTransform();

  const char* get_filter_config_schema(zv_error** error) override;
  void update_filter_config(std::size_t argc, const char** argv, zv_error** error) override;

  /// Samples `width` x `height` codes into the configured target size by the current table, in which code
  /// 0 stands for depth 0 from then on. False when a size is 0, the scale is below 0.001 or there is no
  /// table, or no memory for one with that first entry.
  bool frameSamplingProcess(const std::uint16_t* src, int width, int height, std::uint16_t* dst);

 private:
  FrameHandle convert(FrameProcess& host, std::int32_t format) override;
  void init_lookup_table(zv_error** error) override;
  void stereo_camera_init_lookup_table(zv_error** error);

  /// Takes the values from the fourth on. @return the name of the first that is refused, or null
  const char* update_sampling(const ConfigValues& values);
  FrameHandle convert_sampled(FrameProcess& host, std::int32_t format);
  bool sample(const std::uint16_t* src, std::uint32_t width, std::uint32_t height, std::uint16_t* dst);

  // Guarded by the lock.
  float scale = 0.0f;
  std::int32_t x_cut = 0;
  std::int32_t y_cut = 0;
  std::int32_t x_set = 0;
  std::int32_t y_set = 0;
  std::int32_t dst_width = 0;
  std::int32_t dst_height = 0;
  bool samplingEnabled = false;
};

}  // namespace filterprocessor

#endif
