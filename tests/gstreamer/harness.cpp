#include "gstreamer/harness.h"

#include <gst/video/video.h>

namespace zvfilter {

namespace {

std::size_t stride_of(std::uint32_t width) { return (width * std::size_t{2} + 3) / 4 * 4; }

/// At the end the leak tracer says what is left.
class GStreamer : public testing::Environment {
  void SetUp() override { gst_init(nullptr, nullptr); }
  void TearDown() override { gst_deinit(); }
};
[[maybe_unused]] const testing::Environment* const kGStreamer =
    testing::AddGlobalTestEnvironment(new GStreamer);

}  // namespace

Harness::Harness(const std::string& description, std::uint32_t width, std::uint32_t height) {
  GstElement* const made = gst_parse_launch(description.c_str(), nullptr);
  auto* const element = static_cast<GstElement*>(gst_object_ref_sink(made));
  harness_ = gst_harness_new_with_element(element, "sink", "src");
  gst_object_unref(element);
  bus_ = gst_bus_new();
  gst_element_set_bus(harness_->element, bus_);
  if (width > 0) set_size(width, height);
}

Harness::~Harness() {
  gst_element_set_bus(harness_->element, nullptr);
  gst_harness_teardown(harness_);
  gst_object_unref(bus_);
}

void Harness::set_size(std::uint32_t width, std::uint32_t height, const char* format) {
  width_ = width;
  height_ = height;
  const std::string caps = std::string("video/x-raw,framerate=30/1,format=") + format +
                           ",width=" + std::to_string(width) + ",height=" + std::to_string(height);
  gst_harness_set_src_caps_str(harness_, caps.c_str());
}

void Harness::set(const std::string& property, const std::string& value) {
  ASSERT_NE(g_object_class_find_property(G_OBJECT_GET_CLASS(element()), property.c_str()), nullptr)
      << property;
  gst_util_set_object_arg(G_OBJECT(element()), property.c_str(), value.c_str());
}

GstFlowReturn Harness::push(const Pixels& frame, bool discontinuity) {
  const std::size_t stride = stride_of(width_);
  GstBuffer* const buffer = gst_buffer_new_allocate(nullptr, stride * height_, nullptr);
  for (std::size_t y = 0; y < height_; ++y)
    gst_buffer_fill(buffer, y * stride, &frame[y * width_], width_ * std::size_t{2});
  GST_BUFFER_PTS(buffer) = gst_util_uint64_scale(pushed_++, GST_SECOND, 30);
  if (discontinuity) GST_BUFFER_FLAG_SET(buffer, GST_BUFFER_FLAG_DISCONT);
  return gst_harness_push(harness_, buffer);
}

std::optional<Pixels> Harness::pull() {
  GstBuffer* const buffer = gst_harness_try_pull(harness_);
  if (buffer == nullptr) return std::nullopt;
  GstCaps* const caps = gst_pad_get_current_caps(harness_->sinkpad);
  GstVideoInfo info;
  EXPECT_TRUE(gst_video_info_from_caps(&info, caps));
  gst_caps_unref(caps);
  const auto width = static_cast<std::uint32_t>(info.width);
  const auto height = static_cast<std::uint32_t>(info.height);
  Pixels pixels(std::size_t{width} * height);
  EXPECT_EQ(gst_buffer_get_size(buffer), stride_of(width) * height);
  for (std::size_t y = 0; y < height; ++y)
    gst_buffer_extract(buffer, y * stride_of(width), &pixels[y * width], width * std::size_t{2});
  gst_buffer_unref(buffer);
  return pixels;
}

Pixels Harness::filtered(const Pixels& frame, bool discontinuity) {
  EXPECT_EQ(push(frame, discontinuity), GST_FLOW_OK) << error();
  return pull().value_or(Pixels());
}

std::string Harness::error() const {
  GstMessage* const message = gst_bus_pop_filtered(bus_, GST_MESSAGE_ERROR);
  if (message == nullptr) return "";
  GError* error = nullptr;
  gst_message_parse_error(message, &error, nullptr);
  std::string text = error->message;
  g_error_free(error);
  gst_message_unref(message);
  return text;
}

}  // namespace zvfilter
