#ifndef FILTERPROCESSOR_FILTERS_DEPTH_RESIZE_H
#define FILTERPROCESSOR_FILTERS_DEPTH_RESIZE_H

#include "framework/priv_filter.h"

namespace filterprocessor {

/// Scales a depth image by its nearest pixels and adds or removes bands at its edges. The target size is
/// configured too, and a frame whose size does not lead to it is refused. Until it is configured or
/// reset, a filter's scale is 0 and every frame is refused.
/// Has no lock: its configuration and its frames must come one after the other.
class FILTERPROCESSOR_API DepthResize : public IPrivFilter {
 public:
  struct ProcessParam {
    float scale = 0.0f;          ///< target pixels per source pixel
    std::int32_t ex_left = 0;    ///< columns added on the left; negative: removed
    std::int32_t ex_top = 0;     ///< rows added on the top
    std::int32_t ex_right = 0;   ///< columns added on the right
    std::int32_t ex_bottom = 0;  ///< rows added on the bottom
  };

  const char* get_filter_config_schema(zv_error** error) override;
  void update_filter_config(std::size_t argc, const char** argv, zv_error** error) override;
  zv_frame_t* filter_process(const zv_frame_t* frame, zv_error** error) override;
  void reset_filter(zv_error** error) override;
  void print_key_params() override;

  /// Writes all `dst_width` x `dst_height` pixels of `dst`; what the source does not cover becomes 0.
  /// @return 0; -1 a size is 0; -2 the scale is below 0.001; -3 the sizes do not agree with `param`.
  ///         Nothing is written then.
  std::int32_t depthProcess(const std::uint16_t* src, std::int32_t src_width, std::int32_t src_height,
                            ProcessParam param, std::uint16_t* dst, std::int32_t dst_width,
                            std::int32_t dst_height);

 private:
  std::uint64_t dst_width = 0;
  std::uint64_t dst_height = 0;
  ProcessParam process_param;
};

}  // namespace filterprocessor

#endif
