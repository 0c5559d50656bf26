#ifndef FILTERPROCESSOR_FILTERS_SPATIAL_ADVANCED_FILTER_H
#define FILTERPROCESSOR_FILTERS_SPATIAL_ADVANCED_FILTER_H

#include <mutex>

#include "filters/depth_difference_table.h"
#include "framework/priv_filter.h"

namespace filterprocessor {

/// Smooths within a frame, keeps edges and fills short holes. What counts as an edge is given as a step
/// of disparity; for depth frames it becomes a step of depth that grows with the distance.
class FILTERPROCESSOR_API SpatialAdvancedFilter : public IPrivFilter {
 public:
  const char* get_filter_config_schema(zv_error** error) override;
  void update_filter_config(std::size_t argc, const char** argv, zv_error** error) override;
  zv_frame_t* filter_process(const zv_frame_t* frame, zv_error** error) override;
  /// Leaves the table and the description of the current frame as they are.
  void reset_filter(zv_error** error) override;
  void print_key_params() override;

  /// Whether the configuration was computed for another kind of frame.
  bool check_frame_info_changed(const FrameInfoInner& info) const;
  /// Computes the working parameters and the table for frames like `info`. A failure is stored in
  /// `*error`, which must not be null, and leaves the working parameters unscaled and the table as it
  /// was.
  void updateConfig(const FrameInfoInner& info, zv_error** error);
  /// 0, or 1 when the frame's unit or geometry gives no table.
  int updateDepthDiffLut(const FrameInfoInner& info);

 private:
  struct Parameters {
    std::uint8_t magnitude = 1;
    float alpha = 0.5f;
    std::uint16_t disp_diff = 160;
    std::uint16_t radius = 1;

    bool operator==(const Parameters&) const = default;
  };

  void configure(zv_error** error);

  bool paramsDirty = false;
  FrameInfoInner anchor_frame_info;
  FrameInfoInner current_frame_info = {.fraction_bit_size = 6};
  Parameters user;
  Parameters working;
  DepthDifferenceTable table;
  std::recursive_mutex lock_;
};

}  // namespace filterprocessor

#endif
