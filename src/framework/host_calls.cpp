#include "framework/host_calls.h"

#include <algorithm>

namespace filterprocessor {

FrameHandle HostCalls::create_like(const zv_frame_t* other, bool copy_data) const {
  FrameHandle frame(zv_create_frame_from_other_frame(other, copy_data, slot_));
  test();
  return frame;
}

FrameHandle HostCalls::create_frame(std::int32_t frame_type, std::int32_t format,
                                    std::uint32_t data_size) const {
  FrameHandle frame(zv_create_frame(frame_type, format, data_size, slot_));
  test();
  return frame;
}

ProfileHandle HostCalls::profile_of(const zv_frame_t* frame) const {
  ProfileHandle profile(zv_frame_get_stream_profile(frame, slot_));
  test();
  return profile;
}

ProfileHandle HostCalls::copy_profile_of(const zv_frame_t* frame) const {
  ProfileHandle taken = profile_of(frame);
  ProfileHandle profile(zv_create_stream_profile_from_other_stream_profile(taken.get(), slot_));
  test();
  release(std::move(taken));
  return profile;
}

void HostCalls::set_size_and_attach(ProfileHandle profile, std::uint32_t width, std::uint32_t height,
                                    zv_frame_t* frame) const {
  call(zv_video_stream_profile_set_width, profile.get(), width);
  call(zv_video_stream_profile_set_height, profile.get(), height);
  call(zv_frame_set_stream_profile, frame, static_cast<const zv_stream_profile_t*>(profile.get()));
  release(std::move(profile));
}

std::uint16_t* HostCalls::pixels(const zv_frame_t* frame, std::uint64_t width,
                                 std::uint64_t height) const {
  void* data = call(zv_frame_get_data, frame);
  const std::uint64_t available = call(zv_frame_get_data_size, frame) / sizeof(std::uint16_t);
  const std::uint64_t needed = width * height;  // both come from 32-bit values
  if (needed > available || (needed > 0 && data == nullptr)) {
    fail("invalid params", "filter_process", "frame");
  }
  return static_cast<std::uint16_t*>(data);
}

std::uint16_t* HostCalls::described_pixels(const zv_frame_t* frame, std::uint64_t count) const {
  const std::uint64_t width = call(zv_video_frame_get_width, frame);
  const std::uint64_t height = call(zv_video_frame_get_height, frame);
  return pixels(frame, std::max(width * height, count), 1);
}

void HostCalls::fail(const char* message, const char* function, const char* arguments,
                     std::int32_t exception_type) const {
  report_error(slot_, message, function, arguments, exception_type);
  throw OperationFailed{};
}

void HostCalls::fail_kernel(FrameHandle output, const char* message, const char* filter_name) const {
  report_error(slot_, message, "filter_process", filter_name, ZV_EXCEPTION_KERNEL);
  release(std::move(output));
  throw OperationFailed{};  // reached only if the host could not make the error
}

}  // namespace filterprocessor
