/// A host in memory: the functions of filterprocessor/host.h, and what the C interface has no way to do:
/// make frames and profiles with any attributes, look into them, count what is alive, log calls and make
/// calls fail.
///
/// Threads: all functions may be called from any thread; one frame or profile is written by one thread at
/// a time.
#ifndef FILTERPROCESSOR_HOST_DEV_HOST_H
#define FILTERPROCESSOR_HOST_DEV_HOST_H

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "filterprocessor/host.h"
#include "frame_traits.h"

namespace devhost {

using hosts::FrameTraits;
using hosts::ProfileTraits;

struct Release {
  void operator()(zv_frame_t* frame) const;
  void operator()(zv_stream_profile_t* profile) const;
};
/// One reference to a frame or profile.
using Frame = std::unique_ptr<zv_frame_t, Release>;
using Profile = std::unique_ptr<zv_stream_profile_t, Release>;

Frame make_frame(const FrameTraits& traits);
Profile make_profile(const ProfileTraits& traits);
/// A set holding `depth`, which may be null.
Frame make_frame_set(Frame depth);
/// A new reference to the depth frame of a set, or to the frame itself.
Frame depth_frame_of(const zv_frame_t* frame);
/// Replaces the frame's profile.
void attach_profile(zv_frame_t* frame, const ProfileTraits& traits);

/// The frame's description and samples.
FrameTraits inspect(const zv_frame_t* frame);
/// The frame's profile.
ProfileTraits inspect_profile(const zv_frame_t* frame);

/// Frames and profiles that somebody still holds a reference to. Errors are not counted: the host owns
/// all of them.
struct LiveObjects {
  long frames = 0;
  long profiles = 0;
  bool operator==(const LiveObjects&) const = default;
};
LiveObjects live_objects();

/// The status that the error was made with.
std::int32_t error_status(const zv_error* error);
/// Forgets every error made so far; no pointer to one may be used afterwards.
void clear_errors();
std::size_t error_count();

/// The names of the host functions called since start_call_log(), in order.
void start_call_log();
std::vector<std::string> stop_call_log();

/// Makes the `occurrence`-th call (1 is the next) of a function fail with "injected fault", exception
/// type 7. One fault is armed at a time. An empty name stands for every function.
void fail_call(std::string_view function, int occurrence);
/// Disarms the fault. Returns whether it happened.
bool clear_fault();
/// Makes every frame report a null data pointer.
void hide_data(bool hidden);
/// Makes zv_create_frame() refuse frames of more bytes.
void refuse_frames_above(std::uint32_t bytes);

}  // namespace devhost

#endif
