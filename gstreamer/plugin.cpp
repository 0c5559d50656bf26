#include "depth_element.h"

namespace {

gboolean register_elements(GstPlugin* plugin) {
  gboolean all = gst_element_register(plugin, "zvchain", GST_RANK_NONE, zvgst::chain_element_type());
  for (std::size_t i = 0; i < zvf_filter_count(); ++i) {
    all = gst_element_register(plugin, zvgst::element_name(i).c_str(), GST_RANK_NONE,
                               zvgst::filter_element_type(i)) &&
          all;
  }
  return all;
}

}  // namespace

GST_PLUGIN_DEFINE(GST_VERSION_MAJOR, GST_VERSION_MINOR, zvfilter, "Filters for 16-bit depth images",
                  register_elements, ZVFILTER_VERSION, "MIT/X11", "FilterProcessor",
                  "Unknown package origin")
