// An element for each filter: its properties are the parameters of the filter's schema.
#include <charconv>

#include "depth_element.h"

namespace zvgst {

namespace {

struct FilterElementClass {
  ZvDepthElementClass parent;
  std::size_t filter;
};

std::size_t filter_of(gpointer element) {
  return reinterpret_cast<FilterElementClass*>(G_OBJECT_GET_CLASS(element))->filter;
}

/// Properties are numbered from 1.
zvf_parameter parameter_of(gpointer element, guint id) {
  zvf_parameter parameter = {};
  zvf_parameter_at(filter_of(element), id - 1, &parameter);
  return parameter;
}

std::string text_of(const GValue* value) {
  if (G_VALUE_HOLDS_INT(value)) return std::to_string(g_value_get_int(value));
  if (G_VALUE_HOLDS_UINT(value)) return std::to_string(g_value_get_uint(value));
  if (G_VALUE_HOLDS_BOOLEAN(value)) return g_value_get_boolean(value) != FALSE ? "1" : "0";
  char digits[32];
  return {digits, std::to_chars(digits, digits + sizeof digits, g_value_get_double(value)).ptr};
}

void set_property(GObject* object, guint id, const GValue* value, GParamSpec*) {
  ZvDepthElement* const element = depth_element(object);
  element->chain->ask_value(parameter_of(object, id).name, text_of(value));
  asked(element);
}

void get_property(GObject* object, guint id, GValue* value, GParamSpec*) {
  const zvf_parameter parameter = parameter_of(object, id);
  const auto asked = depth_element(object)->chain->asked_value(parameter.name);
  set_number(value, asked.value_or(parameter.default_value));
}

GParamSpec* spec_of(const zvf_parameter& p) {
  const auto flags = static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_STATIC_BLURB |
                                              GST_PARAM_CONTROLLABLE | GST_PARAM_MUTABLE_PLAYING);
  std::string name = p.name;
  for (char& letter : name) {
    if (letter == '_') letter = '-';
  }
  const char* const n = name.c_str();
  const std::string type = p.type;
  if (type == "bool") return g_param_spec_boolean(n, n, p.description, p.default_value != 0, flags);
  if (type == "float")
    return g_param_spec_double(n, n, p.description, p.min, p.max, p.default_value, flags);
  if (type == "integer")
    return g_param_spec_int(n, n, p.description, static_cast<int>(p.min), static_cast<int>(p.max),
                            static_cast<int>(p.default_value), flags);
  return g_param_spec_uint(n, n, p.description, static_cast<guint>(p.min), static_cast<guint>(p.max),
                           static_cast<guint>(p.default_value), flags);
}

void init_class(gpointer type, gpointer number) {
  auto* const element = static_cast<FilterElementClass*>(type);
  element->filter = GPOINTER_TO_SIZE(number);
  GObjectClass* const object = G_OBJECT_CLASS(type);
  object->set_property = set_property;
  object->get_property = get_property;
  zvf_parameter parameter;
  for (std::size_t i = 0; zvf_parameter_at(element->filter, i, &parameter); ++i)
    g_object_class_install_property(object, static_cast<guint>(i + 1), spec_of(parameter));
  gst_element_class_set_static_metadata(GST_ELEMENT_CLASS(type), zvf_filter_name(element->filter),
                                        "Filter/Effect/Video", zvf_filter_summary(element->filter),
                                        kAuthor);
}

void init(GTypeInstance* instance, gpointer type) {
  const std::size_t filter = static_cast<FilterElementClass*>(type)->filter;
  depth_element(instance)->chain->ask_chain((std::string(zvf_filter_name(filter)) + ":").c_str());
  // A dropped frame would be missing in what the following ones are made of.
  gst_base_transform_set_qos_enabled(GST_BASE_TRANSFORM(instance), !zvf_filter_has_history(filter));
}

}  // namespace

std::string element_name(std::size_t filter) {
  char* const lower = g_ascii_strdown(zvf_filter_name(filter), -1);
  std::string name = std::string("zv") + lower;
  g_free(lower);
  return name;
}

GType filter_element_type(std::size_t filter) {
  const GTypeInfo info = {.class_size = sizeof(FilterElementClass),
                          .base_init = nullptr,
                          .base_finalize = nullptr,
                          .class_init = init_class,
                          .class_finalize = nullptr,
                          .class_data = GSIZE_TO_POINTER(filter),
                          .instance_size = sizeof(ZvDepthElement),
                          .n_preallocs = 0,
                          .instance_init = init,
                          .value_table = nullptr};
  const std::string name = std::string("Zv") + zvf_filter_name(filter);
  return g_type_register_static(zv_depth_element_get_type(), name.c_str(), &info, G_TYPE_FLAG_NONE);
}

}  // namespace zvgst
