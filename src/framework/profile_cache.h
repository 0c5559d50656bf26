#ifndef FILTERPROCESSOR_FRAMEWORK_PROFILE_CACHE_H
#define FILTERPROCESSOR_FRAMEWORK_PROFILE_CACHE_H

#include "framework/host_handles.h"

namespace filterprocessor {

class FrameProcess;
class HostCalls;

/// The profile of the last frame, kept while frames have its size and format.
class ProfileCache {
 public:
  const zv_stream_profile_t* get() const { return profile_.get(); }
  explicit operator bool() const { return profile_ != nullptr; }

  /// Whether the frame has the profile's size and format. There is a profile.
  bool fits(FrameProcess& host) const;
  /// Takes the frame's profile in place of the one there is, if any, which is forgotten first. Does nothing
  /// for an operation that has failed.
  void fetch(FrameProcess& host);
  /// Gives the profile back as a host call.
  void release(HostCalls& host);

 private:
  ProfileHandle profile_;
};

}  // namespace filterprocessor

#endif
