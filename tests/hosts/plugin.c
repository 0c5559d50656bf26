#include "plugin.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <filterprocessor/hole_filling.h>
#include <filterprocessor/margin.h>
#include <filterprocessor/spatial.h>
#include <filterprocessor/speckle.h>
#include <filterprocessor/temporal.h>

#define DEPTH .pixel_type = ZV_PIXEL_TYPE_DEPTH
#define DISPARITY .pixel_type = ZV_PIXEL_TYPE_DISPARITY
#define LINEAR .pixel_type = ZV_PIXEL_TYPE_LINEAR_DEPTH
#define SET .in_set = true
#define PACKED .format = ZV_FORMAT_PACKED_CODE, .corrected = true
#define SAMPLED "9000 10 0.5 %1$u %2$u 0.5 1 1 1 1"

const struct filter_case filter_cases[] = {
    {"DisparityTransform, depth", 0, "9000 10 0.5", {DEPTH}},
    {"DisparityTransform", 0, "9000 10 0.5", {DISPARITY}},
    {"DisparityTransform, packed set", 0, "9000 10 0.5", {DISPARITY, SET, PACKED}},
    {"DisparityTransform, one camera", 0, "9000 10 0.5", {DISPARITY, .one_camera = true}},
    {"HoleFillingFilter, top", 1, "0", {DEPTH}},
    {"HoleFillingFilter, nearest, set", 1, "1", {SET}},
    {"HoleFillingFilter, farthest", 1, "2", {DEPTH}},
    {"NoiseRemovalFilter, set", 2, "80 256 848 480", {SET}},
    {"NoiseRemovalFilter, disparity", 2, "80 256 848 480", {DISPARITY}},
    {"NoiseRemovalFilter, linear depth", 2, "80 256 848 480", {LINEAR}},
    {"SpatialAdvancedFilter, set", 3, "2 0.5 160 4", {SET}},
    {"SpatialAdvancedFilter, disparity", 3, "2 0.3 160 8", {DISPARITY}},
    {"SpatialAdvancedFilter, linear depth", 3, "1 0.5 160 1", {LINEAR}},
    {"TemporalFilter", 4, "0.5 0.4", {DEPTH}},
    {"TemporalFilter, set", 4, "0.5 0.4", {SET}},
    {"DepthResize", 5, "%1$u %2$u 0.5 0 0 0 0", {DEPTH}},
    {"DepthResize, set", 5, "%1$u %2$u 0.5 0 0 0 0", {SET}},
    {"EdgeNoiseRemovalFilter, rows", 6, "6 6 70 30 0 1280 800", {DEPTH}},
    {"EdgeNoiseRemovalFilter, set", 6, "6 6 70 30 1 1280 800", {SET}},
    {"HardwareD2DCorrectionFilter", 7, "", {.corrected = true}},
    {"HardwareD2DCorrectionFilter, set", 7, "", {.corrected = true, SET}},
    {"OpenNIDisparityTransform", 8, "9000 10 0.5 0 0 0.5 0 0 0 0", {DISPARITY}},
    {"OpenNIDisparityTransform, sampled", 8, SAMPLED, {DISPARITY, .corrected = true}},
    {"OpenNIDisparityTransform, sampled set", 8, SAMPLED, {DISPARITY, SET}},
};
const size_t filter_case_count = sizeof filter_cases / sizeof *filter_cases;

bool names_are_right(const struct plugin* plugin) {
  if (plugin->count() != 9) return false;
  for (size_t i = 0; i < filter_case_count; ++i) {
    const char* name = plugin->name(filter_cases[i].index);
    if (strncmp(name, filter_cases[i].name, strlen(name)) != 0 || strlen(name) < 10) return false;
  }
  return true;
}

bool open_plugin(struct plugin* plugin, const char* path, int flags) {
  plugin->library = dlopen(path, flags);
  if (plugin->library == NULL) return false;
  plugin->count = FIND(plugin->library, zv_get_filter_count);
  plugin->name = FIND(plugin->library, zv_get_filter_name);
  plugin->create = FIND(plugin->library, zv_create_filter);
  return true;
}

bool configure(PrivFilterContext* filter, const struct filter_case* what, uint32_t width,
               uint32_t height) {
  char text[128];
  snprintf(text, sizeof text, what->values, width / 2, height / 2);
  const char* values[16];
  size_t count = 0;
  char* rest = NULL;
  for (char* word = strtok_r(text, " ", &rest); word != NULL; word = strtok_r(NULL, " ", &rest))
    values[count++] = word;
  zv_error* error = NULL;
  filter->update_config(filter->filter, count, values, &error);
  return error == NULL;
}

uint64_t try_case(const struct plugin* plugin, const struct filter_case* what, uint32_t width,
                  uint32_t height) {
  PrivFilterContext* filter = plugin->create(what->index);
  if (filter == NULL) return 0;
  uint64_t seen = 0;
  zv_frame_t* input = make_frame(&what->frame, width, height);
  bool right =
      filter->get_config_schema(filter->filter, NULL) != NULL && configure(filter, what, width, height);
  for (int frame = 0; right && frame < 3; ++frame) {
    const bool refused = frame == 2;
    if (refused) set_frame_type(input, 1);
    zv_error* error = NULL;
    zv_frame_t* output = filter->process(filter->filter, input, &error);
    right = (output == NULL) == refused && (error != NULL) == refused;
    if (output == NULL) continue;
    seen = fingerprint(output);
    zv_delete_frame(output, NULL);
  }
  filter->reset(filter->filter, NULL);
  zv_delete_frame(input, NULL);
  filter->destroy(filter);
  return right ? seen : 0;
}

/* Exported kernels: whether they return a value, the name, a number of the variant, the arguments. */
#define W b->width, b->height
#define W16 (uint16_t) b->width, (uint16_t)b->height
#define TABLE b->table, 8, ENTRIES
enum { ENTRIES = 64 };
/* clang-format off */
#define KERNELS(VALUE, NOTHING) \
  VALUE(depth_api_softfilter, 1, b->work, b->pixels, NULL, W, NULL, 0, 0, 64, 80, 4, 4, 0, 1) \
  VALUE(depth_api_softfilter, 2, b->work, b->pixels, b->table, W, TABLE, 64, 80, 4, 4, 0, 0) \
  NOTHING(softfilterPyramid, 1, b->work, b->pixels, W, 64, 20, 0) \
  NOTHING(softfilterPyramid_lut, 1, b->work, b->pixels, W, TABLE, 20, 0) \
  NOTHING(filterSpecklePyramid, 1, b->work, b->pixels, b->table, W, 64, 4, 4, 0) \
  NOTHING(filterSpecklePyramid_lut, 1, b->work, b->pixels, b->table, W, TABLE, 4, 4, 0) \
  NOTHING(Softfilter_new, 1, b->work, b->pixels, W, 64, 80, 0) \
  NOTHING(downSample, 1, b->pixels, b->other, W) \
  NOTHING(upSample_new, 1, b->pixels, b->other, b->width / 2, b->height / 2, 64) \
  NOTHING(softfilterOpt, 1, b->work, b->pixels, W, 64, 20, 0) \
  VALUE(depth_api_horizontal_margin_filter, 1, b->pixels, W, 6, 70) \
  VALUE(depth_api_margin_filter, 1, b->pixels, W, 6, 6, 70, 30) \
  VALUE(depth_api_margin_filter, 2, b->pixels, W, 6, 6, 70, 30000) \
  VALUE(depth_api_margin_filter_asym, 1, b->pixels, W, 9, 6, 6, 70, 30) \
  VALUE(depth_api_margin_filter_with_chamfer, 1, b->pixels, W, 6, 70, 30, b->other) \
  VALUE(depth_api_init_margin_chamfer, 1, b->other, W, 20, 6, 10, 0) \
  VALUE(depth_api_spatial_filter, 1, b->pixels, W16, NULL, 0, 0, 2, 4, 1, 1, 0.5f, 64) \
  VALUE(depth_api_spatial_filter, 2, b->pixels, W16, TABLE, 2, 0, 1, 0, 0.3f, 64) \
  VALUE(depth_api_spatial_filter_origin, 1, b->pixels, W16, 1, 8, 1, 1, 0.3f, 64) \
  VALUE(depth_api_spatial_filter_origin_lut, 1, b->pixels, W16, TABLE, 3, 1, 1, 1, 0.37f) \
  VALUE(depth_api_temporal_filter, 1, b->pixels, W, b->other, 0.1f, 0.4f) \
  VALUE(depth_api_hole_filling_filter, 0, b->pixels, b->width, (uint32_t)b->height, 0) \
  VALUE(depth_api_hole_filling_filter, 1, b->pixels, b->width, (uint32_t)b->height, 1) \
  VALUE(depth_api_hole_filling_filter, 2, b->pixels, b->width, (uint32_t)b->height, 2)
/* clang-format on */

#define DEFINE(name, number, ...)                                           \
  static int32_t name##_##number(void* function, const struct buffers* b) { \
    return ((__typeof__(name)*)function)(__VA_ARGS__);                      \
  }
#define DEFINE_VOID(name, number, ...)                                      \
  static int32_t name##_##number(void* function, const struct buffers* b) { \
    ((__typeof__(name)*)function)(__VA_ARGS__);                             \
    return 0;                                                               \
  }
KERNELS(DEFINE, DEFINE_VOID)
#define LIST(name, number, ...) {#name, name##_##number},
const struct kernel_case kernel_cases[] = {KERNELS(LIST, LIST)};
const size_t kernel_case_count = sizeof kernel_cases / sizeof *kernel_cases;

static size_t pixel_count(const struct buffers* b) { return (size_t)b->width * (size_t)b->height; }

struct buffers make_buffers(uint32_t width, uint32_t height) {
  struct buffers b = {.width = (int32_t)width, .height = (int32_t)height};
  b.pixels = malloc(2 * pixel_count(&b));
  b.other = malloc(2 * pixel_count(&b));
  b.table = malloc(2 * ENTRIES);
  b.work = malloc(9 * pixel_count(&b));
  paint(b.pixels, width, height);
  for (size_t i = 0; i < pixel_count(&b); ++i) b.other[i] = (uint16_t)(b.pixels[i] + i % 3);
  for (int i = 0; i < ENTRIES; ++i) b.table[i] = (uint16_t)(20 + i);
  return b;
}

void free_buffers(const struct buffers* b) {
  free(b->pixels);
  free(b->other);
  free(b->table);
  free(b->work);
}

uint64_t buffers_fingerprint(const struct buffers* b) {
  return fingerprint_bytes(b->pixels, 2 * pixel_count(b)) ^
         3 * fingerprint_bytes(b->other, 2 * pixel_count(b));
}

uint64_t try_kernel(const struct plugin* plugin, const struct kernel_case* what, uint32_t width,
                    uint32_t height) {
  const struct buffers b = make_buffers(width, height);
  void* kernel = dlsym(plugin->library, what->name);
  const bool right = kernel != NULL && what->run(kernel, &b) == 0;
  const uint64_t seen = buffers_fingerprint(&b);
  free_buffers(&b);
  return right ? seen : 0;
}
