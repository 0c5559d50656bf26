// A plug-in whose filters show what is done with them and how their faults are taken.
#include <csignal>
#include <cstdio>

#include "filterprocessor/filter_processor.h"

struct zv_priv_filter_t {
  int index;
  int frames;
};

namespace {

const char* const kNames[] = {"MissingFilter", "FailingFilter", "SilentFilter", "EchoFilter",
                              "StoppingFilter"};

void destroy(PrivFilterContext* context) {
  delete context->filter;
  delete context;
}

void reset(zv_priv_filter_t* filter, zv_error**) { filter->frames = 0; }

const char* schema(zv_priv_filter_t*, zv_error**) {
  return "count, integer, 0, 10, 1, 3, how many\nratio, float, 0, 1, 0.1, 0.5, how much\n"
         "on, bool, 0, 1, 1, 1, whether";
}

void update(zv_priv_filter_t*, size_t argc, const char** argv, zv_error**) {
  std::printf("configured:");
  for (size_t i = 0; i < argc; ++i) std::printf(" %s", argv[i]);
  std::printf("\n");
}

void describe(const zv_priv_filter_t* filter, const zv_frame_t* frame, zv_error** error) {
  const bool set = zv_frame_get_type(frame, error) == ZV_FRAME_TYPE_SET;
  const zv_frame_t* depth = set ? zv_frameset_get_depth_frame(frame, error) : frame;
  zv_stream_profile_t* profile = zv_frame_get_stream_profile(depth, error);
  const ZVDisparityParam disparity =
      zv_disparity_based_stream_profile_get_disparity_param(profile, error);
  zv_delete_stream_profile(profile, error);
  const auto* pixels = static_cast<const uint16_t*>(zv_frame_get_data(depth, error));
  std::printf("frame %d: set %d, first pixel %d, bits %d, type %d, scale %g, baseline %g, fx %g\n",
              filter->frames, set, pixels[0], zv_video_frame_get_pixel_available_bit_size(depth, error),
              zv_video_frame_get_pixel_type(depth, error),
              static_cast<double>(zv_depth_frame_get_value_scale(depth, error)),
              static_cast<double>(disparity.baseline), disparity.fx);
}

zv_frame_t* process(zv_priv_filter_t* filter, const zv_frame_t* frame, zv_error** error) {
  ++filter->frames;
  if (filter->index == 1) *error = zv_create_error(1, "out of order", "filter_process", "a frame", 7);
  if (filter->index <= 2) return nullptr;
  if (filter->index == 3) describe(filter, frame, error);
  if (filter->index == 4) {
    constexpr uint16_t once = 4242, twice = 4243;
    const uint16_t mark = *static_cast<const uint16_t*>(zv_frame_get_data(frame, error));
    if (mark == once || mark == twice) std::raise(SIGTERM);
    if (mark == twice) std::raise(SIGTERM);
  }
  return zv_create_frame_from_other_frame(frame, true, error);
}

}  // namespace

extern "C" {

int32_t zv_get_filter_count() { return 5; }
const char* zv_get_filter_name(int32_t index) { return kNames[index]; }

PrivFilterContext* zv_create_filter(int32_t index) {
  if (index == 0) return nullptr;
  return new PrivFilterContext{destroy, new zv_priv_filter_t{index, 0}, reset, schema, update, process};
}

FILTERPROCESSOR_API const char* depth_api_level() { return "probing"; }

}  // extern "C"
