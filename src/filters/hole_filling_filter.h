#ifndef FILTERPROCESSOR_FILTERS_HOLE_FILLING_FILTER_H
#define FILTERPROCESSOR_FILTERS_HOLE_FILLING_FILTER_H

#include "framework/priv_filter.h"

namespace filterprocessor {

/// Fills holes from their neighbours. Has no lock: its configuration and its frames must come one after
/// the other.
class FILTERPROCESSOR_API HoleFillingFilter : public IPrivFilter {
 public:
  const char* get_filter_config_schema(zv_error** error) override;
  void update_filter_config(std::size_t argc, const char** argv, zv_error** error) override;
  zv_frame_t* filter_process(const zv_frame_t* frame, zv_error** error) override;
  void reset_filter(zv_error** error) override;
  void print_key_params() override;

 protected:
  std::uint32_t hole_filling_mode = 0;  ///< 0 top, 1 nearest, 2 farthest
};

}  // namespace filterprocessor

#endif
