#ifndef TESTS_GSTREAMER_HARNESS_H
#define TESTS_GSTREAMER_HARNESS_H

#include <optional>
#include <string>

#include <gst/check/gstharness.h>

#include "zvfilter/chain_handle.h"

namespace zvfilter {

/// An element between two pads, as a pipeline has it.
class Harness {
 public:
  explicit Harness(const std::string& description, std::uint32_t width = 0, std::uint32_t height = 0);
  ~Harness();

  /// @param format in the caps, "GRAY16_LE" unless another one is to be refused
  void set_size(std::uint32_t width, std::uint32_t height, const char* format = "GRAY16_LE");
  /// Sets a property as gst-launch-1.0 does it.
  void set(const std::string& property, const std::string& value);
  /// Pushes a frame, rows padded to 4 bytes.
  GstFlowReturn push(const Pixels& frame, bool discontinuity = false);
  /// What came out since, without padding; nothing: no frame.
  std::optional<Pixels> pull();
  Pixels filtered(const Pixels& frame, bool discontinuity = false);
  /// The text of the first error on the bus, empty without one.
  std::string error() const;

  GstHarness* get() const { return harness_; }
  GstElement* element() const { return harness_->element; }

 private:
  GstHarness* harness_;
  GstBus* bus_;
  std::uint32_t width_ = 0, height_ = 0;
  unsigned pushed_ = 0;
};

}  // namespace zvfilter

#endif
