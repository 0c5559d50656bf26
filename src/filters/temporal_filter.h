#ifndef FILTERPROCESSOR_FILTERS_TEMPORAL_FILTER_H
#define FILTERPROCESSOR_FILTERS_TEMPORAL_FILTER_H

#include "common/zeroed_buffer.h"
#include "framework/priv_filter.h"

namespace filterprocessor {

/// Blends each frame with the filter's previous output where both are valid and close to each other.
/// Has no lock: its configuration and its frames must come one after the other.
class FILTERPROCESSOR_API TemporalFilter : public IPrivFilter {
 public:
  const char* get_filter_config_schema(zv_error** error) override;
  void update_filter_config(std::size_t argc, const char** argv, zv_error** error) override;
  zv_frame_t* filter_process(const zv_frame_t* frame, zv_error** error) override;
  void reset_filter(zv_error** error) override;
  void print_key_params() override;

  /// Starts an empty history unless there is one of this size; without memory there is none.
  void initBuffers(std::uint64_t width, std::uint64_t height);

 private:
  ZeroedBuffer<std::uint16_t> history;  ///< the last output; none until the first frame
  float diff_scale = 0.1f;
  float weight = 0.4f;
};

}  // namespace filterprocessor

#endif
