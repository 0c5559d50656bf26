// zvchain: a chain from a file or a text.
#include "depth_element.h"

struct ZvChain {
  ZvDepthElement parent;
  gchar* source;
};

struct ZvChainClass {
  ZvDepthElementClass parent;
};

G_DEFINE_TYPE(ZvChain, zv_chain, zv_depth_element_get_type())

namespace {

enum : guint { kChain = 1 };

ZvChain* element_of(GObject* object) {
  return G_TYPE_CHECK_INSTANCE_CAST(object, zv_chain_get_type(), ZvChain);
}

void set_property(GObject* object, guint, const GValue* value, GParamSpec*) {
  ZvChain* const element = element_of(object);
  GST_OBJECT_LOCK(element);
  g_free(element->source);
  element->source = g_value_dup_string(value);
  GST_OBJECT_UNLOCK(element);
  const gchar* const source = g_value_get_string(value);
  element->parent.chain->ask_chain(source);
  // Another chain may need other sizes than this one.
  gst_base_transform_reconfigure_src(GST_BASE_TRANSFORM(object));
}

void get_property(GObject* object, guint, GValue* value, GParamSpec*) {
  ZvChain* const element = element_of(object);
  GST_OBJECT_LOCK(element);
  g_value_set_string(value, element->source);
  GST_OBJECT_UNLOCK(element);
}

void finalize(GObject* object) {
  g_free(element_of(object)->source);
  G_OBJECT_CLASS(zv_chain_parent_class)->finalize(object);
}

}  // namespace

static void zv_chain_class_init(ZvChainClass* element) {
  GObjectClass* const object = G_OBJECT_CLASS(element);
  object->set_property = set_property;
  object->get_property = get_property;
  object->finalize = finalize;
  const auto flags =
      static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS | GST_PARAM_MUTABLE_PLAYING);
  g_object_class_install_property(
      object, kChain,
      g_param_spec_string(
          "chain", "chain",
          "A chain file, or the text of steps [TAG=]FILTER[:key=value,...] with semicolons between them",
          nullptr, flags));
  gst_element_class_set_static_metadata(
      GST_ELEMENT_CLASS(element), "Chain of depth filters", "Filter/Effect/Video",
      "A chain of filters for 16-bit depth images, from a file or a text", zvgst::kAuthor);
}

static void zv_chain_init(ZvChain* element) {
  element->parent.chain->ask_chain(nullptr);
  // A chain may have filters with a history, in which a dropped frame would be missing.
  gst_base_transform_set_qos_enabled(GST_BASE_TRANSFORM(element), FALSE);
}

GType zvgst::chain_element_type() { return zv_chain_get_type(); }
