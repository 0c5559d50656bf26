#ifndef GSTREAMER_DEPTH_ELEMENT_H
#define GSTREAMER_DEPTH_ELEMENT_H

#include <gst/video/gstvideofilter.h>

#include "live_chain.h"

/// What all elements are: frames of 16-bit samples through a chain. Derived classes ask it for the chain.
struct ZvDepthElement {
  GstVideoFilter parent;
  zvgst::LiveChain* chain;
};

struct ZvDepthElementClass {
  GstVideoFilterClass parent;
};

GType zv_depth_element_get_type();

namespace zvgst {

inline constexpr const char* kAuthor =
    "FilterProcessor maintainers <maintainers@filterprocessor.invalid>";

inline ZvDepthElement* depth_element(gpointer object) {
  return G_TYPE_CHECK_INSTANCE_CAST(object, zv_depth_element_get_type(), ZvDepthElement);
}

/// To be called after something was asked of the chain: sizes are agreed on anew where that may change them.
void asked(ZvDepthElement* element);

/// Derived types, which the plug-in registers.
GType filter_element_type(std::size_t filter);
GType chain_element_type();

/// "zvspatialadvancedfilter"
std::string element_name(std::size_t filter);

}  // namespace zvgst

#endif
