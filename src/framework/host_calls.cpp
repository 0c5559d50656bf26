#include "framework/host_calls.h"

#include <algorithm>

namespace filterprocessor {

FrameHandle HostCalls::create_like(const zv_frame_t* other, bool copy_data) {
  return take<FrameHandle>(zv_create_frame_from_other_frame, other, copy_data);
}

FrameHandle HostCalls::create_frame(std::int32_t frame_type, std::int32_t format,
                                    std::uint32_t data_size) {
  return take<FrameHandle>(zv_create_frame, frame_type, format, data_size);
}

ProfileHandle HostCalls::profile_of(const zv_frame_t* frame) {
  return take<ProfileHandle>(zv_frame_get_stream_profile, frame);
}

ProfileHandle HostCalls::copy_profile_of(const zv_frame_t* frame) {
  ProfileHandle taken = profile_of(frame);
  ProfileHandle profile = take<ProfileHandle>(zv_create_stream_profile_from_other_stream_profile,
                                              static_cast<const zv_stream_profile_t*>(taken.get()));
  release(std::move(taken));
  return profile;
}

std::optional<std::int64_t> HostCalls::disparity_correction(const zv_frame_t* frame) {
  constexpr std::int32_t kItem = ZV_METADATA_DISPARITY_CORRECTION;
  if (!call(zv_frame_has_metadata, frame, kItem)) return std::nullopt;
  return call(zv_frame_get_metadata_value, frame, kItem);
}

void HostCalls::set_size_and_attach(ProfileHandle profile, std::uint32_t width, std::uint32_t height,
                                    zv_frame_t* frame) {
  call(zv_video_stream_profile_set_width, profile.get(), width);
  call(zv_video_stream_profile_set_height, profile.get(), height);
  call(zv_frame_set_stream_profile, frame, static_cast<const zv_stream_profile_t*>(profile.get()));
  release(std::move(profile));
}

std::uint16_t* HostCalls::pixels(const zv_frame_t* frame, std::uint64_t width, std::uint64_t height) {
  void* data = call(zv_frame_get_data, frame);
  const std::uint64_t available = call(zv_frame_get_data_size, frame) / sizeof(std::uint16_t);
  if (failed_) return nullptr;
  const std::uint64_t needed = width * height;  // both come from 32-bit values
  if (needed > available || (needed > 0 && data == nullptr)) {
    fail("invalid params", "filter_process", "frame");
  }
  return static_cast<std::uint16_t*>(data);
}

std::uint16_t* HostCalls::described_pixels(const zv_frame_t* frame, std::uint64_t count) {
  const std::uint64_t width = call(zv_video_frame_get_width, frame);
  const std::uint64_t height = call(zv_video_frame_get_height, frame);
  return pixels(frame, std::max(width * height, count), 1);
}

void HostCalls::fail(const char* message, const char* function, const char* arguments,
                     std::int32_t exception_type) {
  if (!failed_) report_error(slot_, message, function, arguments, exception_type);
  failed_ = true;
}

void HostCalls::fail_kernel(FrameHandle output, const char* message, const char* filter_name) {
  if (failed_) return;
  report_error(slot_, message, "filter_process", filter_name, ZV_EXCEPTION_KERNEL);
  release(std::move(output));
  failed_ = true;  // also if the host could not make the error
}

}  // namespace filterprocessor
