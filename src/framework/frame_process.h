#ifndef FILTERPROCESSOR_FRAMEWORK_FRAME_PROCESS_H
#define FILTERPROCESSOR_FRAMEWORK_FRAME_PROCESS_H

#include <cstdint>

#include "framework/host_calls.h"

namespace filterprocessor {

/// One frame on its way through a filter: the host, the frame as received and the depth frame in it.
class FrameProcess : public HostCalls {
 public:
  /// Finds the depth frame. Fails with "invalid frame type error" when there is none.
  FrameProcess(const zv_frame_t* frame, zv_error** error);

  /// Frame type of the frame as received.
  std::int32_t received_type() const noexcept { return type_; }
  /// The depth frame, borrowed.
  const zv_frame_t* depth() const noexcept { return depth_; }

  /// What the caller gets for a new depth frame: the frame itself or, for a set, a new set that holds it.
  FrameHandle deliver(FrameHandle output);
  /// What the caller gets when there is nothing to do: a copy of the frame, or of the whole set.
  FrameHandle deliver_copy() { return create_like(received_, true); }

 private:
  const zv_frame_t* received_;
  std::int32_t type_;
  const zv_frame_t* depth_ = nullptr;
};

/// The frame of every filter_process: `body` gets a FrameProcess and returns what it delivers. A null
/// frame is null; so is any failure, with its error stored already.
template <typename Body>
zv_frame_t* process_frame(const zv_frame_t* frame, zv_error** error, Body&& body) {
  if (frame == nullptr) return nullptr;
  FrameProcess host(frame, error);
  if (host.failed()) return nullptr;
  FrameHandle delivered = body(host);
  return host.failed() ? nullptr : delivered.release();
}

}  // namespace filterprocessor

#endif
