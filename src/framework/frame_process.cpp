#include "framework/frame_process.h"

namespace filterprocessor {

FrameProcess::FrameProcess(const zv_frame_t* frame, zv_error** error)
    : HostCalls(error), received_(frame), type_(call(zv_frame_get_type, frame)) {
  if (type_ == ZV_FRAME_TYPE_SET) depth_ = call(zv_frameset_get_depth_frame, frame);
  if (type_ == ZV_FRAME_TYPE_DEPTH) depth_ = frame;
  if (depth_ == nullptr) fail("invalid frame type error", "filter_process", "frameType");
}

FrameHandle FrameProcess::deliver(FrameHandle output) {
  if (type_ != ZV_FRAME_TYPE_SET) return output;
  FrameHandle set = create_like(received_, false);
  call(zv_frameset_push_frame, set.get(), static_cast<const zv_frame_t*>(output.get()));
  if (!failed()) static_cast<void>(output.release());  // the set has taken the reference over
  return set;
}

}  // namespace filterprocessor
