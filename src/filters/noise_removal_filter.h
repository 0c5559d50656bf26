#ifndef FILTERPROCESSOR_FILTERS_NOISE_REMOVAL_FILTER_H
#define FILTERPROCESSOR_FILTERS_NOISE_REMOVAL_FILTER_H

#include <mutex>

#include "common/zeroed_buffer.h"
#include "filters/depth_difference_table.h"
#include "framework/priv_filter.h"

namespace filterprocessor {

class HostCalls;

/// Removes speckles: small regions cut off from their surroundings by jumps in value. The parameters are
/// given for an anchor resolution and rescaled to each frame's.
class FILTERPROCESSOR_API NoiseRemovalFilter : public IPrivFilter {
 public:
  const char* get_filter_config_schema(zv_error** error) override;
  void update_filter_config(std::size_t argc, const char** argv, zv_error** error) override;
  zv_frame_t* filter_process(const zv_frame_t* frame, zv_error** error) override;
  /// Leaves the description of the current frame as it is.
  void reset_filter(zv_error** error) override;
  void print_key_params() override;

  /// The fraction bits of the disparity codes that min_diff is given in.
  void update_anchor_fraction_bitsize(std::uint8_t bits);
  /// Whether the configuration was last applied for another kind of frame.
  bool check_frame_info_changed(const FrameInfoInner& info) const;
  /// Computes the working parameters, the work buffer and the table for frames like `info`. A failure is
  /// stored in `*error`, which must not be null, and leaves what was computed before it; want of memory
  /// leaves no buffer, and no error.
  void updateConfig(const FrameInfoInner& info, zv_error** error);
  /// 0, or 1 when the frame's unit or geometry gives no table.
  int updateDepthDiffLut(const FrameInfoInner& info);

 private:
  struct Parameters {
    std::uint64_t width = 848;
    std::uint64_t height = 480;
    std::uint16_t max_size = 80;
    std::uint16_t min_diff = 256;
    std::uint8_t fraction_bits = 8;

    bool operator==(const Parameters&) const = default;
  };

  void configure(const FrameInfoInner& info, HostCalls& host);

  std::recursive_mutex lock_;
  bool config_changed = false;
  Parameters anchor;
  Parameters working;
  FrameInfoInner current_frame_info = {.fraction_bit_size = 6};
  FrameInfoInner last_frame_info = {.width = 848, .height = 480};
  ZeroedBuffer<std::uint8_t> buffer;
  DepthDifferenceTable table;
};

}  // namespace filterprocessor

#endif
