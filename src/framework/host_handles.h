#ifndef FILTERPROCESSOR_FRAMEWORK_HOST_HANDLES_H
#define FILTERPROCESSOR_FRAMEWORK_HOST_HANDLES_H

#include <memory>

#include "filterprocessor/host.h"

namespace filterprocessor {

/// Gives a reference back with an error slot of its own, so that an error already reported to the caller
/// stands.
struct HostDeleter {
  void operator()(zv_frame_t* frame) const noexcept {
    zv_error* ignored = nullptr;
    zv_delete_frame(frame, &ignored);
  }
  void operator()(zv_stream_profile_t* profile) const noexcept {
    zv_error* ignored = nullptr;
    zv_delete_stream_profile(profile, &ignored);
  }
};

using FrameHandle = std::unique_ptr<zv_frame_t, HostDeleter>;
using ProfileHandle = std::unique_ptr<zv_stream_profile_t, HostDeleter>;

}  // namespace filterprocessor

#endif
