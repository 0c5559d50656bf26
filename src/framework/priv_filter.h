#ifndef FILTERPROCESSOR_FRAMEWORK_PRIV_FILTER_H
#define FILTERPROCESSOR_FRAMEWORK_PRIV_FILTER_H

#include <cstddef>
#include <cstdint>
#include <iosfwd>

#include "filterprocessor/host.h"

namespace filterprocessor {

/// Base of every filter. There is no virtual destructor: a filter is owned by a std::shared_ptr that was
/// made for its concrete class.
///
/// Errors are reported by storing a host error in `*error`; a null `error` is accepted and loses the
/// report. These operations do not throw.
class FILTERPROCESSOR_API IPrivFilter {
 public:
  /// The depth frame that a filter's derived state was built for.
  struct FrameInfoInner {
    std::uint64_t width = 0;             ///< pixels
    std::uint64_t height = 0;            ///< pixels
    double depth_unit = 1.0;             ///< value scale: host depth units per step of a pixel value
    std::int32_t depth_flag = -1;        ///< pixel type; -1: no frame yet
    float bxf = 0.0f;                    ///< baseline times focal length
    std::uint8_t fraction_bit_size = 8;  ///< fractional bits of a disparity value

    /// Exact comparison of every field, so a NaN differs from itself.
    bool operator==(const FrameInfoInner&) const = default;
  };

  /// One line per parameter; a constant of the library.
  virtual const char* get_filter_config_schema(zv_error** error) = 0;
  /// Sets every parameter from `argc` texts in schema order.
  virtual void update_filter_config(std::size_t argc, const char** argv, zv_error** error) = 0;
  /// A new frame (a set for a set), owned by the caller, or null. The input is never changed.
  virtual zv_frame_t* filter_process(const zv_frame_t* frame, zv_error** error) = 0;
  /// Back to the initial parameters, without history; what exactly is the filter's choice.
  virtual void reset_filter(zv_error** error) = 0;
  /// Writes the current parameters to standard output.
  virtual void print_key_params() = 0;

 protected:
  IPrivFilter() = default;
  IPrivFilter(const IPrivFilter&) = delete;
  IPrivFilter& operator=(const IPrivFilter&) = delete;
  ~IPrivFilter() = default;
};

}  // namespace filterprocessor

#endif
