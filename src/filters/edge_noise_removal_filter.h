#ifndef FILTERPROCESSOR_FILTERS_EDGE_NOISE_REMOVAL_FILTER_H
#define FILTERPROCESSOR_FILTERS_EDGE_NOISE_REMOVAL_FILTER_H

#include <mutex>

#include "framework/priv_filter.h"

namespace filterprocessor {

/// Clears the unreliable pixels where the valid area begins beside the image's borders. The parameters
/// are given for an anchor resolution and rescaled to each frame's.
class FILTERPROCESSOR_API EdgeNoiseRemovalFilter : public IPrivFilter {
 public:
  /// All in pixels of a `width` x `height` image.
  struct [[gnu::packed]] Parameters {
    std::uint32_t margin_x_th = 6;  ///< pixels to clear in a row
    std::uint32_t margin_y_th = 6;  ///< pixels to clear in a column
    std::uint32_t limit_x_th = 70;  ///< how far from a border the valid area may begin for that
    std::uint32_t limit_y_th = 30;
    std::uint32_t width = 1280;
    std::uint32_t height = 800;
    std::uint8_t enable_vertical_direction = 1;  ///< although the schema says 0

    bool operator==(const Parameters&) const = default;
  };

  const char* get_filter_config_schema(zv_error** error) override;
  void update_filter_config(std::size_t argc, const char** argv, zv_error** error) override;
  zv_frame_t* filter_process(const zv_frame_t* frame, zv_error** error) override;
  void reset_filter(zv_error** error) override;
  void print_key_params() override;

  /// Whether the working parameters must be computed anew. Their height is compared with the frame's
  /// width and their width with the frame's height, so only square frames keep them; and a frame that
  /// lies across the anchor resolution is taken for one of that resolution.
  bool check_frame_info_changed(std::uint32_t width, std::uint32_t height) const;
  /// The working parameters for a frame's size. A failure is stored in `*error`, which must not be null;
  /// the result is the unscaled parameters then.
  Parameters updateConfig(std::uint32_t width, std::uint32_t height, zv_error** error) const;

 private:
  bool paramsDirty = false;
  Parameters user;
  Parameters working;
  std::recursive_mutex lock_;
};

}  // namespace filterprocessor

#endif
