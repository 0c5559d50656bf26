/// The host of programs that filter frames: the functions of filterprocessor/host.h over a pool of frames. It keeps no log and no
/// errors, and once it has seen a few frames it takes no memory.
///
/// What a filter does happens in a Scope, on one thread. Frames may outlive their pool's owner, and the last reference may go on
/// any thread.
#ifndef FILTERPROCESSOR_HOST_FRAME_HOST_H
#define FILTERPROCESSOR_HOST_FRAME_HOST_H

#include <cstddef>
#include <memory>

#include "frame_traits.h"

namespace framehost {

struct Release {
  void operator()(zv_frame_t* frame) const;
  void operator()(zv_stream_profile_t* profile) const;
};
/// One reference to a frame or profile.
using Frame = std::unique_ptr<zv_frame_t, Release>;
using Profile = std::unique_ptr<zv_stream_profile_t, Release>;

class Pool;
struct LeavePool {
  void operator()(Pool* pool) const;
};
/// A pool, which ends when it is left and its last frame is gone.
using PoolHandle = std::unique_ptr<Pool, LeavePool>;
/// @throws std::bad_alloc
PoolHandle make_pool();

/// A filter's work on the calling thread: frames come from the pool, and the errors that are made meanwhile end with it. Scopes nest.
class Scope {
 public:
  explicit Scope(Pool& pool);
  Scope(const Scope&) = delete;
  Scope& operator=(const Scope&) = delete;
  ~Scope();

  /// The next frame of just so many bytes is made in this memory, which is not the pool's and has to outlive the frame.
  void offer(void* memory, std::size_t size);

 private:
  Pool* outer_pool_;
  zv_error* outer_errors_;
};

/// What frames of one sequence share: their profile.
Profile make_profile(Pool& pool, const hosts::ProfileTraits& traits);

/// A frame over pixels that somebody else holds and nobody writes while the frame is there.
/// @param traits without pixels
/// @throws std::bad_alloc
Frame borrow_frame(Pool& pool, const hosts::FrameTraits& traits, const Profile& profile,
                   const void* pixels);
/// The same over memory of the pool with unspecified contents.
Frame make_frame(Pool& pool, const hosts::FrameTraits& traits, const Profile& profile);
Frame make_frame_set(Pool& pool, Frame depth);
/// A new reference to the depth frame of a set, or to the frame itself.
Frame depth_frame_of(const zv_frame_t* frame);

/// All but the pixels.
const hosts::FrameTraits& traits_of(const zv_frame_t* frame);
/// Of the frame's profile; null without one.
const hosts::ProfileTraits* profile_of(const zv_frame_t* frame);
/// The frame's samples, and how many there are.
std::uint16_t* pixels_of(const zv_frame_t* frame);
std::size_t pixel_count(const zv_frame_t* frame);

}  // namespace framehost

#endif
