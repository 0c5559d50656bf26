#ifndef FILTERPROCESSOR_FRAMEWORK_HOST_CALLS_H
#define FILTERPROCESSOR_FRAMEWORK_HOST_CALLS_H

#include <cstdint>
#include <type_traits>

#include "framework/errors.h"
#include "framework/host_handles.h"

namespace filterprocessor {

/// Ends an operation whose error has been stored already. Never leaves a filter.
struct OperationFailed {};

/// The host as one operation of a filter sees it. Every call is given the caller's error slot (one of its
/// own when the caller has none) and is followed by the test of that slot: an error found there, whoever
/// stored it, is printed and ends the operation. What a call returns is owned by a handle before the
/// test.
class HostCalls {
 public:
  explicit HostCalls(zv_error** callers_slot) noexcept
      : slot_(callers_slot != nullptr ? callers_slot : &own_slot_) {}
  HostCalls(const HostCalls&) = delete;
  HostCalls& operator=(const HostCalls&) = delete;

  zv_error** slot() const noexcept { return slot_; }

  /// Prints the error in the slot and ends the operation, if there is one.
  void test() const {
    if (*slot_ == nullptr) return;
    print_host_error(*slot_);
    throw OperationFailed{};
  }

  /// Any host call that hands over no reference.
  template <typename Function, typename... Arguments>
  auto call(Function* function, Arguments... arguments) const {
    if constexpr (std::is_void_v<decltype(function(arguments..., slot_))>) {
      function(arguments..., slot_);
      test();
    } else {
      auto result = function(arguments..., slot_);
      test();
      return result;
    }
  }

  /// A new frame like `other`.
  FrameHandle create_like(const zv_frame_t* other, bool copy_data) const;
  /// A new zero-filled frame of `data_size` bytes.
  FrameHandle create_frame(std::int32_t frame_type, std::int32_t format, std::uint32_t data_size) const;
  /// A reference to the frame's profile.
  ProfileHandle profile_of(const zv_frame_t* frame) const;
  /// A new profile like the frame's.
  ProfileHandle copy_profile_of(const zv_frame_t* frame) const;

  ZVDisparityParam disparity_params(const zv_stream_profile_t* profile) const {
    return call(zv_disparity_based_stream_profile_get_disparity_param, profile);
  }

  /// Gives a reference back as a host call like any other. The reference is gone even if that fails.
  void release(FrameHandle frame) const { call(zv_delete_frame, frame.release()); }
  void release(ProfileHandle profile) const { call(zv_delete_stream_profile, profile.release()); }

  /// Gives the profile, which nobody else holds yet, a size, attaches it to the frame and gives the
  /// reference back.
  void set_size_and_attach(ProfileHandle profile, std::uint32_t width, std::uint32_t height,
                           zv_frame_t* frame) const;

  /// The frame's samples. Ends the operation with "invalid params" unless there are `width` x `height` of
  /// them.
  std::uint16_t* pixels(const zv_frame_t* frame, std::uint64_t width, std::uint64_t height) const;

  /// The samples of a frame: as many as it describes itself and at least `count`, or the operation ends
  /// as above.
  std::uint16_t* described_pixels(const zv_frame_t* frame, std::uint64_t count = 0) const;

  /// Reports an error of the filter's own and ends the operation.
  [[noreturn]] void fail(const char* message, const char* function, const char* arguments,
                         std::int32_t exception_type = ZV_EXCEPTION_INVALID_VALUE) const;
  /// The same after a kernel failed on `output`, which is deleted.
  [[noreturn]] void fail_kernel(FrameHandle output, const char* message, const char* filter_name) const;

 private:
  zv_error* own_slot_ = nullptr;
  zv_error** slot_;
};

}  // namespace filterprocessor

#endif
