#include "filters/temp_filter1.h"

#include "framework/host_calls.h"

namespace filterprocessor {

const char* TempFilter1::get_filter_config_schema(zv_error**) {
  return "max_size, uint16_t, 1, 1000, 1, 80, value max size\n"
         "min_diff, uint16_t, 1, 51200, 1, 256, value min diff\n"
         "type, uint16_t, 0, 1, 1, 1, noise removal type";
}

void TempFilter1::update_filter_config(std::size_t, const char**, zv_error**) {}

zv_frame_t* TempFilter1::filter_process(const zv_frame_t* frame, zv_error** error) {
  if (frame == nullptr) return nullptr;
  HostCalls host(error);
  host.call(zv_frame_get_data, frame);
  const ProfileHandle profile = host.profile_of(frame);
  FrameHandle output = host.create_like(frame, false);
  const zv_frame_t* const made = output.get();
  host.call(zv_frame_get_data, made);
  host.call(zv_frame_get_data_size, made);
  return host.failed() ? nullptr : output.release();
}

void TempFilter1::reset_filter(zv_error**) {}

}  // namespace filterprocessor
