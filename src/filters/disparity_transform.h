#ifndef FILTERPROCESSOR_FILTERS_DISPARITY_TRANSFORM_H
#define FILTERPROCESSOR_FILTERS_DISPARITY_TRANSFORM_H

#include "filters/disparity_filter.h"

namespace filterprocessor {

/// Turns disparity frames into depth frames of the same size, by the rule for the camera's kind and pack
/// mode. Frames of other pixel types come back as copies.
class FILTERPROCESSOR_API DisparityTransform : public DisparityFilter {
 public:
  DisparityTransform();

  const char* get_filter_config_schema(zv_error** error) override;
  void update_filter_config(std::size_t argc, const char** argv, zv_error** error) override;

 private:
  FrameHandle convert(FrameProcess& host, std::int32_t format) override;
  void init_lookup_table(zv_error** error) override;
  void stereo_camera_init_lookup_table(zv_error** error);
  void mono_camera_init_lookup_table(zv_error** error);
};

}  // namespace filterprocessor

#endif
