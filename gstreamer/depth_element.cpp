#include "depth_element.h"

#include <bit>

using zvgst::depth_element;
using zvgst::Size;

G_DEFINE_ABSTRACT_TYPE(ZvDepthElement, zv_depth_element, GST_TYPE_VIDEO_FILTER)

namespace {

static_assert(std::endian::native == std::endian::little, "samples are those of GRAY16_LE as they are");

#define DEPTH_CAPS                                                         \
  GST_STATIC_CAPS(                                                         \
      "video/x-raw, format=GRAY16_LE, width=[1,32767], height=[1,32767], " \
      "framerate=" GST_VIDEO_FPS_RANGE)
GstStaticPadTemplate sink_template =
    GST_STATIC_PAD_TEMPLATE("sink", GST_PAD_SINK, GST_PAD_ALWAYS, DEPTH_CAPS);
GstStaticPadTemplate source_template =
    GST_STATIC_PAD_TEMPLATE("src", GST_PAD_SRC, GST_PAD_ALWAYS, DEPTH_CAPS);
#undef DEPTH_CAPS

zvgst::LiveChain& chain_of(gpointer element) { return *depth_element(element)->chain; }

void post(GstBaseTransform* transform) {
  GST_ELEMENT_ERROR(transform, STREAM, FORMAT, ("%s", chain_of(transform).failure()), (nullptr));
}

void set_property(GObject* object, guint id, const GValue* value, GParamSpec*) {
  chain_of(object).ask_input(id - 1, zvgst::number_of(value));
  zvgst::asked(depth_element(object));
}

void get_property(GObject* object, guint id, GValue* value, GParamSpec*) {
  zvgst::set_number(value, chain_of(object).asked_input(id - 1).value_or(zvgst::default_of(id - 1)));
}

void finalize(GObject* object) {
  delete depth_element(object)->chain;
  G_OBJECT_CLASS(zv_depth_element_parent_class)->finalize(object);
}

gboolean start(GstBaseTransform* transform) {
  if (chain_of(transform).update()) return TRUE;
  GST_ELEMENT_ERROR(transform, RESOURCE, SETTINGS, ("%s", chain_of(transform).failure()), (nullptr));
  return FALSE;
}

gboolean stop(GstBaseTransform* transform) {
  chain_of(transform).reset();
  return TRUE;
}

GstCaps* transform_caps(GstBaseTransform* transform, GstPadDirection, GstCaps* caps, GstCaps* filter) {
  GstCaps* other = gst_caps_copy(caps);
  if (chain_of(transform).resizes())
    gst_caps_set_simple(other, "width", GST_TYPE_INT_RANGE, 1, 32767, "height", GST_TYPE_INT_RANGE, 1,
                        32767, nullptr);
  if (filter == nullptr) return other;
  GstCaps* const both = gst_caps_intersect_full(filter, other, GST_CAPS_INTERSECT_FIRST);
  gst_caps_unref(other);
  return both;
}

/// Where sizes change, the frames to come are agreed on here: the chain takes over what was asked of it.
GstCaps* fixate_caps(GstBaseTransform* transform, GstPadDirection direction, GstCaps* caps,
                     GstCaps* other) {
  GstVideoInfo info;
  if (direction == GST_PAD_SINK && chain_of(transform).resizes() &&
      gst_video_info_from_caps(&info, caps)) {
    Size input = {static_cast<std::uint32_t>(info.width), static_cast<std::uint32_t>(info.height)};
    Size output = input;
    // A failure is said by set_info().
    if (chain_of(transform).update()) chain_of(transform).negotiate(input, output);
    other = gst_caps_make_writable(gst_caps_truncate(other));
    GstStructure* const fields = gst_caps_get_structure(other, 0);
    gst_structure_fixate_field_nearest_int(fields, "width", static_cast<int>(output.width));
    gst_structure_fixate_field_nearest_int(fields, "height", static_cast<int>(output.height));
  }
  return GST_BASE_TRANSFORM_CLASS(zv_depth_element_parent_class)
      ->fixate_caps(transform, direction, caps, other);
}

gboolean set_info(GstVideoFilter* filter, GstCaps*, GstVideoInfo* in, GstCaps*, GstVideoInfo* out) {
  GstBaseTransform* const transform = GST_BASE_TRANSFORM(filter);
  zvgst::LiveChain& chain = chain_of(transform);
  if (!chain.resizes()) chain.update();
  const Size input = {static_cast<std::uint32_t>(in->width), static_cast<std::uint32_t>(in->height)};
  const Size agreed = {static_cast<std::uint32_t>(out->width), static_cast<std::uint32_t>(out->height)};
  Size made;
  if (!chain.negotiate(input, made)) {
    post(transform);
    return FALSE;
  }
  if (made != agreed) {
    GST_ELEMENT_ERROR(transform, STREAM, FORMAT,
                      ("frames of %ux%u become %ux%u, and what follows takes %ux%u", input.width,
                       input.height, made.width, made.height, agreed.width, agreed.height),
                      (nullptr));
    return FALSE;
  }
  gst_base_transform_set_in_place(transform, input == made);
  return TRUE;
}

void before_transform(GstBaseTransform* transform, GstBuffer* buffer) {
  const GstClockTime time =
      gst_segment_to_stream_time(&transform->segment, GST_FORMAT_TIME, GST_BUFFER_TIMESTAMP(buffer));
  if (GST_CLOCK_TIME_IS_VALID(time)) gst_object_sync_values(GST_OBJECT(transform), time);
  if (!chain_of(transform).resizes()) chain_of(transform).update();
  if (GST_BUFFER_IS_DISCONT(buffer)) chain_of(transform).reset();
}

gboolean sink_event(GstBaseTransform* transform, GstEvent* event) {
  if (GST_EVENT_TYPE(event) == GST_EVENT_FLUSH_STOP) chain_of(transform).reset();
  return GST_BASE_TRANSFORM_CLASS(zv_depth_element_parent_class)->sink_event(transform, event);
}

const std::uint16_t* samples(const GstVideoFrame* frame) {
  return static_cast<const std::uint16_t*>(GST_VIDEO_FRAME_PLANE_DATA(frame, 0));
}

std::size_t stride(const GstVideoFrame* frame) {
  return static_cast<std::size_t>(GST_VIDEO_FRAME_PLANE_STRIDE(frame, 0));
}

GstFlowReturn transform_frame(GstVideoFilter* filter, GstVideoFrame* in, GstVideoFrame* out) {
  const Size size = {static_cast<std::uint32_t>(GST_VIDEO_FRAME_WIDTH(out)),
                     static_cast<std::uint32_t>(GST_VIDEO_FRAME_HEIGHT(out))};
  if (chain_of(filter).run(samples(in), stride(in), const_cast<std::uint16_t*>(samples(out)), stride(out),
                           size))
    return GST_FLOW_OK;
  post(GST_BASE_TRANSFORM(filter));
  return GST_FLOW_ERROR;
}

GstFlowReturn transform_frame_in_place(GstVideoFilter* filter, GstVideoFrame* frame) {
  return transform_frame(filter, frame, frame);
}

}  // namespace

static void zv_depth_element_class_init(ZvDepthElementClass* element) {
  GObjectClass* const object = G_OBJECT_CLASS(element);
  object->set_property = set_property;
  object->get_property = get_property;
  object->finalize = finalize;
  zvgst::install_input_properties(object);
  gst_element_class_add_static_pad_template(GST_ELEMENT_CLASS(element), &sink_template);
  gst_element_class_add_static_pad_template(GST_ELEMENT_CLASS(element), &source_template);
  GstBaseTransformClass* const transform = GST_BASE_TRANSFORM_CLASS(element);
  transform->start = start;
  transform->stop = stop;
  transform->transform_caps = transform_caps;
  transform->fixate_caps = fixate_caps;
  transform->before_transform = before_transform;
  transform->sink_event = sink_event;
  GstVideoFilterClass* const filter = GST_VIDEO_FILTER_CLASS(element);
  filter->set_info = set_info;
  filter->transform_frame = transform_frame;
  filter->transform_frame_ip = transform_frame_in_place;
}

static void zv_depth_element_init(ZvDepthElement* element) { element->chain = new zvgst::LiveChain; }

void zvgst::asked(ZvDepthElement* element) {
  if (element->chain->resizes()) gst_base_transform_reconfigure_src(GST_BASE_TRANSFORM(element));
}
