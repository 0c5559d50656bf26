#ifndef FILTERPROCESSOR_FILTERS_TEMP_FILTER1_H
#define FILTERPROCESSOR_FILTERS_TEMP_FILTER1_H

#include "framework/priv_filter.h"

namespace filterprocessor {

/// An unfinished pass-through filter. It has no print_key_params, so no object of it is made and it is
/// not listed.
class FILTERPROCESSOR_API TempFilter1 : public IPrivFilter {
 public:
  const char* get_filter_config_schema(zv_error** error) override;
  void update_filter_config(std::size_t argc, const char** argv, zv_error** error) override;
  /// A new frame of the same kind with unspecified data, for a frame of any type.
  zv_frame_t* filter_process(const zv_frame_t* frame, zv_error** error) override;
  void reset_filter(zv_error** error) override;
};

}  // namespace filterprocessor

#endif
