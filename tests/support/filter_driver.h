/// Drives a filter as the host does: through the exported functions and the context record.
#ifndef FILTERPROCESSOR_TESTS_SUPPORT_FILTER_DRIVER_H
#define FILTERPROCESSOR_TESTS_SUPPORT_FILTER_DRIVER_H

#include <initializer_list>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cases/images.h"
#include "dev_host.h"
#include "filter_handle.h"

namespace filterprocessor {

/// An error in the form in which filters print it.
inline std::string error_text(const std::string& message, const std::string& function,
                              const std::string& args, std::int32_t exception_type = 4) {
  return "zv_error was raised: \n\tcall: " + function + "(" + args + ")\n\tmessage: " + message +
         "\n\terror type: " + std::to_string(exception_type) + "\n";
}
/// Empty when there is none.
inline std::string text_of(const zv_error* error) {
  if (error == nullptr) return {};
  EXPECT_EQ(devhost::error_status(error), 1);
  return error_text(zv_error_get_message(error), zv_error_get_function(error), zv_error_get_args(error),
                    zv_error_get_exception_type(error));
}
inline const std::string kNoError;

class FilterDriver {
 public:
  /// Configured with the values, if there are any, which have to be taken.
  explicit FilterDriver(const std::string& name, const std::vector<std::string>& values = {})
      : context_(devhost::make_filter(name)) {
    if (!context_) ADD_FAILURE() << name << " was not created";
    EXPECT_EQ(values.empty() ? kNoError : update(values), kNoError) << name;
  }

  std::string schema() { return context_->get_config_schema(context_->filter, nullptr); }

  /// Returns the error, if any.
  std::string update(const std::vector<std::string>& values) {
    std::vector<const char*> argv;
    for (const std::string& value : values) argv.push_back(value.c_str());
    zv_error* error = nullptr;
    context_->update_config(context_->filter, argv.size(), argv.data(), &error);
    return text_of(error);
  }

  /// The returned frame; what went wrong stands in last_error().
  devhost::Frame process(const zv_frame_t* frame) {
    zv_error* error = nullptr;
    devhost::Frame result(context_->process(context_->filter, frame, &error));
    last_error_ = text_of(error);
    return result;
  }
  devhost::Frame process(const devhost::Frame& frame) { return process(frame.get()); }

  /// What a frame, which has to be taken, becomes.
  devhost::FrameTraits output(const devhost::FrameTraits& traits) {
    const devhost::Frame result = process(devhost::make_frame(traits));
    EXPECT_EQ(last_error_, kNoError);
    return result ? devhost::inspect(result.get()) : devhost::FrameTraits{};
  }
  Pixels filtered(const devhost::FrameTraits& traits) { return output(traits).pixels; }
  /// The error for a frame, which has to be refused and no frame left behind.
  std::string refused(const devhost::FrameTraits& traits) {
    const long frames = devhost::live_objects().frames;
    printed_ = output_of([&] { EXPECT_FALSE(process(devhost::make_frame(traits))); });
    EXPECT_EQ(devhost::live_objects().frames, frames);
    return last_error_;
  }

  const std::string& last_error() const { return last_error_; }
  /// What was written to standard output with the last refusal.
  const std::string& printed() const { return printed_; }

  /// Runs `action` and returns what was written to standard output.
  template <typename Action>
  static std::string output_of(Action&& action) {
    testing::internal::CaptureStdout();
    action();
    return testing::internal::GetCapturedStdout();
  }

  void reset() { context_->reset(context_->filter, nullptr); }
  PrivFilterContext* context() { return context_.get(); }

 private:
  devhost::FilterHandle context_;
  std::string last_error_;
  std::string printed_;
};

/// A depth frame of these pixels in rows of the same length.
inline devhost::FrameTraits frame_of(Pixels pixels, std::uint32_t height = 1) {
  devhost::FrameTraits traits;
  traits.width = static_cast<std::uint32_t>(pixels.size()) / height;
  traits.height = height;
  traits.pixels = std::move(pixels);
  return traits;
}

inline const std::string kBadFrameType =
    error_text("invalid frame type error", "filter_process", "frameType");
inline const std::string kBadCount =
    error_text("the number of params error", "update_filter_config", "argc");
inline const std::string kBadFrame = error_text("invalid params", "filter_process", "frame");
inline std::string out_of_range(const std::string& parameter) {
  return error_text("params out of range", "update_filter_config", parameter);
}
/// For a frame that a filter cannot be configured for.
inline std::string invalid(const std::string& field) {
  return error_text("invalid params", "updateConfig", field);
}

}  // namespace filterprocessor

#endif
