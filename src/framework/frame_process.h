#ifndef FILTERPROCESSOR_FRAMEWORK_FRAME_PROCESS_H
#define FILTERPROCESSOR_FRAMEWORK_FRAME_PROCESS_H

#include <cstdint>
#include <new>
#include <utility>

#include "framework/host_calls.h"

namespace filterprocessor {

/// One frame on its way through a filter: the host, the frame as received and the depth frame in it.
class FrameProcess : public HostCalls {
 public:
  /// Finds the depth frame. Ends the operation with "invalid frame type error" when there is none.
  FrameProcess(const zv_frame_t* frame, zv_error** error);

  /// Frame type of the frame as received.
  std::int32_t received_type() const noexcept { return type_; }
  /// The depth frame, borrowed.
  const zv_frame_t* depth() const noexcept { return depth_; }

  /// What the caller gets for a new depth frame: the frame itself or, for a set, a new set that holds it.
  zv_frame_t* deliver(FrameHandle output) const;
  /// What the caller gets when there is nothing to do: a copy of the frame, or of the whole set.
  zv_frame_t* deliver_copy() const;

 private:
  const zv_frame_t* received_;
  std::int32_t type_;
  const zv_frame_t* depth_ = nullptr;
};

/// Runs one operation on a frame. A null frame is null; any failure, with its error stored already,
/// becomes null.
template <typename Operation>
zv_frame_t* run_operation(const zv_frame_t* frame, zv_error** error, Operation&& operation) noexcept {
  if (frame == nullptr) return nullptr;
  try {
    return operation(HostCalls(error));
  } catch (const OperationFailed&) {
    return nullptr;
  } catch (const std::bad_alloc&) {
    report_error(error, "invalid params", "filter_process", "frame");
    return nullptr;
  }
}

/// The frame of every filter_process: `body` gets a FrameProcess and returns what it delivers.
template <typename Body>
zv_frame_t* process_frame(const zv_frame_t* frame, zv_error** error, Body&& body) noexcept {
  return run_operation(frame, error,
                       [&](const HostCalls& host) { return body(FrameProcess(frame, host.slot())); });
}

}  // namespace filterprocessor

#endif
