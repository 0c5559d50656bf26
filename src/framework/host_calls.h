#ifndef FILTERPROCESSOR_FRAMEWORK_HOST_CALLS_H
#define FILTERPROCESSOR_FRAMEWORK_HOST_CALLS_H

#include <cstdint>
#include <optional>
#include <type_traits>

#include "framework/errors.h"
#include "framework/host_handles.h"

namespace filterprocessor {

/// The host as one operation of a filter sees it. Every call is given the caller's error slot (one of its
/// own when the caller has none) and is followed by the test of that slot: an error found there, whoever
/// stored it, is printed and the operation has failed. From then on every call is skipped and gives 0 or
/// null, so an operation may run on to its end; it looks at failed() before it changes what outlives it.
/// Nothing is thrown, since that would need memory.
class HostCalls {
 public:
  explicit HostCalls(zv_error** callers_slot) noexcept
      : slot_(callers_slot != nullptr ? callers_slot : &own_slot_) {}
  HostCalls(const HostCalls&) = delete;
  HostCalls& operator=(const HostCalls&) = delete;

  zv_error** slot() const noexcept { return slot_; }
  bool failed() const noexcept { return failed_; }

  /// Prints the error in the slot and fails the operation, if there is one.
  void test() {
    if (failed_ || *slot_ == nullptr) return;
    print_host_error(*slot_);
    failed_ = true;
  }

  /// Any host call that hands over no reference.
  template <typename Function, typename... Arguments>
  auto call(Function* function, Arguments... arguments) {
    using Result = decltype(function(arguments..., slot_));
    if constexpr (std::is_void_v<Result>) {
      if (failed_) return;
      function(arguments..., slot_);
      test();
    } else {
      if (failed_) return Result{};
      const Result result = function(arguments..., slot_);
      test();
      return failed_ ? Result{} : result;
    }
  }

  /// A host call that hands over a reference. It is owned before the test.
  template <typename Handle, typename Function, typename... Arguments>
  Handle take(Function* function, Arguments... arguments) {
    if (failed_) return nullptr;
    Handle handle(function(arguments..., slot_));
    test();
    return handle;
  }

  /// A new frame like `other`.
  FrameHandle create_like(const zv_frame_t* other, bool copy_data);
  /// A new zero-filled frame of `data_size` bytes.
  FrameHandle create_frame(std::int32_t frame_type, std::int32_t format, std::uint32_t data_size);
  /// A reference to the frame's profile.
  ProfileHandle profile_of(const zv_frame_t* frame);
  /// A new profile like the frame's.
  ProfileHandle copy_profile_of(const zv_frame_t* frame);

  ZVDisparityParam disparity_params(const zv_stream_profile_t* profile) {
    return call(zv_disparity_based_stream_profile_get_disparity_param, profile);
  }
  /// The frame's metadata item for the disparity correction, if it has one.
  std::optional<std::int64_t> disparity_correction(const zv_frame_t* frame);

  /// Gives a reference back as a host call like any other. The reference is gone even if that fails.
  void release(FrameHandle frame) {
    if (!failed_) call(zv_delete_frame, frame.release());
  }
  void release(ProfileHandle profile) {
    if (!failed_) call(zv_delete_stream_profile, profile.release());
  }

  /// Gives the profile, which nobody else holds yet, a size, attaches it to the frame and gives the
  /// reference back.
  void set_size_and_attach(ProfileHandle profile, std::uint32_t width, std::uint32_t height,
                           zv_frame_t* frame);

  /// The frame's samples. Fails with "invalid params" unless there are `width` x `height` of them.
  std::uint16_t* pixels(const zv_frame_t* frame, std::uint64_t width, std::uint64_t height);

  /// The samples of a frame: as many as it describes itself and at least `count`, or it fails as above.
  std::uint16_t* described_pixels(const zv_frame_t* frame, std::uint64_t count = 0);

  /// Reports an error of the filter's own and fails the operation.
  void fail(const char* message, const char* function, const char* arguments,
            std::int32_t exception_type = ZV_EXCEPTION_INVALID_VALUE);
  /// The same for want of memory.
  void fail_without_memory() { fail("invalid params", "filter_process", "frame"); }
  /// The same after a kernel failed on `output`, which is deleted.
  void fail_kernel(FrameHandle output, const char* message, const char* filter_name);

 private:
  zv_error* own_slot_ = nullptr;
  zv_error** slot_;
  bool failed_ = false;
};

}  // namespace filterprocessor

#endif
