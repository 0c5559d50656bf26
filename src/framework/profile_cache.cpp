#include "framework/profile_cache.h"

#include <utility>

#include "framework/frame_process.h"

namespace filterprocessor {

bool ProfileCache::fits(FrameProcess& host) const {
  const zv_stream_profile_t* const profile = get();
  const std::uint32_t width = host.call(zv_video_frame_get_width, host.depth());
  const std::uint32_t height = host.call(zv_video_frame_get_height, host.depth());
  const std::int32_t format = host.call(zv_frame_get_format, host.depth());
  const std::uint32_t profile_width = host.call(zv_video_stream_profile_get_width, profile);
  const std::uint32_t profile_height = host.call(zv_video_stream_profile_get_height, profile);
  const std::int32_t profile_format = host.call(zv_stream_profile_get_format, profile);
  return width == profile_width && height == profile_height && format == profile_format;
}

void ProfileCache::fetch(FrameProcess& host) {
  if (host.failed()) return;
  if (profile_) host.release(std::move(profile_));
  ProfileHandle taken = host.profile_of(host.depth());
  if (!host.failed()) profile_ = std::move(taken);
}

void ProfileCache::release(HostCalls& host) { host.release(std::move(profile_)); }

}  // namespace filterprocessor
