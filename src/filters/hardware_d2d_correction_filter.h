#ifndef FILTERPROCESSOR_FILTERS_HARDWARE_D2D_CORRECTION_FILTER_H
#define FILTERPROCESSOR_FILTERS_HARDWARE_D2D_CORRECTION_FILTER_H

#include "framework/priv_filter.h"
#include "framework/profile_cache.h"

namespace filterprocessor {

/// Clears the depth that a camera's own conversion gives to empty disparities when it adds a correction
/// to all of them. It has no parameters and no lock: one instance serves one thread at a time.
class FILTERPROCESSOR_API HardwareD2DCorrectionFilter : public IPrivFilter {
 public:
  const char* get_filter_config_schema(zv_error** error) override;
  void update_filter_config(std::size_t argc, const char** argv, zv_error** error) override;
  zv_frame_t* filter_process(const zv_frame_t* frame, zv_error** error) override;
  void reset_filter(zv_error** error) override;
  void print_key_params() override;

 private:
  double correctionDispOffset = 0.0;
  double correctionInvalidDepth = 0.0;
  double correctionFb = 0.0;
  bool correctionDirty = false;
  ProfileCache cachedProfile;
};

}  // namespace filterprocessor

#endif
