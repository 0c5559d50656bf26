#include "host.h"

#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

struct zv_error {
  char message[128];
  int32_t exception_type;
};

struct zv_stream_profile_t {
  atomic_int references;
  int32_t format;
  uint32_t width, height;
  ZVCameraIntrinsic intrinsic;
  ZVDisparityParam disparity;
};

struct zv_frame_t {
  atomic_int references;
  int32_t type;
  uint32_t size;
  struct info {
    int32_t format, pixel_type;
    uint32_t width, height;
    uint8_t bits;
    float value_scale;
    bool corrected;
  } info;
  zv_stream_profile_t* profile;
  zv_frame_t* depth; /* of a set */
  uint16_t pixels[];
};

void (*watch_call)(const void* caller);

static struct zv_error errors[64];
static atomic_uint errors_made;
static atomic_long live;

long live_objects(void) { return live; }

zv_error* zv_create_error(int32_t status, const char* message, const char* function, const char* args,
                          int32_t exception_type) {
  struct zv_error* error = &errors[errors_made++ % 64];
  snprintf(error->message, sizeof error->message, "%s: %s(%s), %d", message, function, args, status);
  error->exception_type = exception_type;
  return error;
}

const char* zv_error_get_message(const zv_error* error) { return error->message; }
const char* zv_error_get_function(const zv_error* error) { return error->message; }
const char* zv_error_get_args(const zv_error* error) { return error->message; }
int32_t zv_error_get_exception_type(const zv_error* error) { return error->exception_type; }

static bool fails(bool failure, const char* function, zv_error** error) {
  if (failure && error != NULL) *error = zv_create_error(1, "host failure", function, "", 7);
  return failure;
}

#define BEGIN(failure, result)                                     \
  if (watch_call != NULL) watch_call(__builtin_return_address(0)); \
  if (fails(failure, __func__, error)) return result
#define NOTHING

#define GET(Object, Result, function, expression)           \
  Result function(const Object* object, zv_error** error) { \
    BEGIN(object == NULL, (Result){0});                     \
    return expression;                                      \
  }
#define SET(Object, Value, function, member)                     \
  void function(Object* object, Value value, zv_error** error) { \
    BEGIN(object == NULL, NOTHING);                              \
    object->member = value;                                      \
  }

GET(zv_frame_t, int32_t, zv_frame_get_type, object->type)
GET(zv_frame_t, int32_t, zv_frame_get_format, object->info.format)
GET(zv_frame_t, uint32_t, zv_frame_get_data_size, object->size)
GET(zv_frame_t, void*, zv_frame_get_data, (void*)object->pixels)
GET(zv_frame_t, zv_frame_t*, zv_frameset_get_depth_frame, object->depth)
GET(zv_frame_t, uint32_t, zv_video_frame_get_width, object->info.width)
GET(zv_frame_t, uint32_t, zv_video_frame_get_height, object->info.height)
GET(zv_frame_t, int32_t, zv_video_frame_get_pixel_type, object->info.pixel_type)
GET(zv_frame_t, uint8_t, zv_video_frame_get_pixel_available_bit_size, object->info.bits)
GET(zv_frame_t, float, zv_depth_frame_get_value_scale, object->info.value_scale)
SET(zv_frame_t, int32_t, zv_video_frame_set_pixel_type, info.pixel_type)
SET(zv_frame_t, uint8_t, zv_video_frame_set_pixel_available_bit_size, info.bits)
SET(zv_frame_t, float, zv_depth_frame_set_value_scale, info.value_scale)
GET(zv_stream_profile_t, int32_t, zv_stream_profile_get_format, object->format)
GET(zv_stream_profile_t, uint32_t, zv_video_stream_profile_get_width, object->width)
GET(zv_stream_profile_t, uint32_t, zv_video_stream_profile_get_height, object->height)
GET(zv_stream_profile_t, ZVCameraIntrinsic, zv_video_stream_profile_get_intrinsic, object->intrinsic)
GET(zv_stream_profile_t, ZVDisparityParam, zv_disparity_based_stream_profile_get_disparity_param,
    object->disparity)
SET(zv_stream_profile_t, uint32_t, zv_video_stream_profile_set_width, width)
SET(zv_stream_profile_t, uint32_t, zv_video_stream_profile_set_height, height)
SET(zv_stream_profile_t, ZVCameraIntrinsic, zv_video_stream_profile_set_intrinsic, intrinsic)

void zv_frame_update_data(zv_frame_t* frame, const void* data, uint32_t size, zv_error** error) {
  BEGIN(frame == NULL || size > frame->size, NOTHING);
  memmove(frame->pixels, data, size);
}

bool zv_frame_has_metadata(const zv_frame_t* frame, int32_t item, zv_error** error) {
  BEGIN(frame == NULL, false);
  return item == ZV_METADATA_DISPARITY_CORRECTION && frame->info.corrected;
}

int64_t zv_frame_get_metadata_value(const zv_frame_t* frame, int32_t item, zv_error** error) {
  BEGIN(frame == NULL || item != ZV_METADATA_DISPARITY_CORRECTION || !frame->info.corrected, 0);
  return 20;
}

static void release_profile(zv_stream_profile_t* profile) {
  if (profile == NULL || --profile->references > 0) return;
  --live;
  free(profile);
}

static void release_frame(zv_frame_t* frame) {
  if (frame == NULL || --frame->references > 0) return;
  release_profile(frame->profile);
  release_frame(frame->depth);
  --live;
  free(frame);
}

void zv_delete_frame(const zv_frame_t* frame, zv_error** error) {
  BEGIN(frame == NULL, NOTHING);
  release_frame((zv_frame_t*)frame);
}

void zv_delete_stream_profile(const zv_stream_profile_t* profile, zv_error** error) {
  BEGIN(profile == NULL, NOTHING);
  release_profile((zv_stream_profile_t*)profile);
}

static void attach(zv_frame_t* frame, zv_stream_profile_t* profile) {
  if (profile != NULL) ++profile->references;
  release_profile(frame->profile);
  frame->profile = profile;
}

void zv_frame_set_stream_profile(zv_frame_t* frame, const zv_stream_profile_t* profile,
                                 zv_error** error) {
  BEGIN(frame == NULL || profile == NULL, NOTHING);
  attach(frame, (zv_stream_profile_t*)profile);
  frame->info.width = profile->width;
  frame->info.height = profile->height;
}

zv_stream_profile_t* zv_frame_get_stream_profile(const zv_frame_t* frame, zv_error** error) {
  BEGIN(frame == NULL || frame->profile == NULL, NULL);
  ++frame->profile->references;
  return frame->profile;
}

static zv_stream_profile_t* new_profile(const zv_stream_profile_t* like) {
  zv_stream_profile_t* profile = malloc(sizeof *profile);
  if (profile == NULL) return NULL;
  *profile = *like;
  profile->references = 1;
  ++live;
  return profile;
}

zv_stream_profile_t* zv_create_stream_profile_from_other_stream_profile(const zv_stream_profile_t* other,
                                                                        zv_error** error) {
  BEGIN(other == NULL, NULL);
  zv_stream_profile_t* profile = new_profile(other);
  fails(profile == NULL, __func__, error);
  return profile;
}

void zv_frame_copy_info(const zv_frame_t* from, zv_frame_t* to, zv_error** error) {
  BEGIN(from == NULL || to == NULL, NOTHING);
  to->info = from->info;
  attach(to, from->profile);
}

zv_frame_t* zv_create_frame(int32_t frame_type, int32_t format, uint32_t data_size, zv_error** error) {
  BEGIN(data_size == 0 && frame_type != ZV_FRAME_TYPE_SET, NULL);
  zv_frame_t* frame = calloc(1, sizeof *frame + data_size);
  if (fails(frame == NULL, __func__, error)) return NULL;
  frame->references = 1;
  frame->type = frame_type;
  frame->info.format = format;
  frame->size = data_size;
  ++live;
  return frame;
}

zv_frame_t* zv_create_frame_from_other_frame(const zv_frame_t* other, bool copy_data, zv_error** error) {
  BEGIN(other == NULL, NULL);
  zv_frame_t* frame = zv_create_frame(other->type, other->info.format, other->size, error);
  if (frame == NULL) return NULL;
  zv_frame_copy_info(other, frame, error);
  if (copy_data) memcpy(frame->pixels, other->pixels, other->size);
  if (!copy_data || other->depth == NULL) return frame;
  frame->depth = zv_create_frame_from_other_frame(other->depth, true, error);
  if (frame->depth != NULL) return frame;
  release_frame(frame);
  return NULL;
}

void zv_frameset_push_frame(zv_frame_t* set, const zv_frame_t* frame, zv_error** error) {
  BEGIN(set == NULL || frame == NULL, NOTHING);
  release_frame(set->depth);
  set->depth = (zv_frame_t*)frame;
}

void paint(uint16_t* pixels, uint32_t width, uint32_t height) {
  for (uint32_t y = 0; y < height; ++y) {
    for (uint32_t x = 0; x < width; ++x) {
      const uint32_t noise = (x * 73856093u ^ y * 19349663u) * 2654435761u >> 24;
      const uint32_t surface = 1000 + 700 * ((x / 24 + y / 16) % 3) + x + y + noise % 16;
      const uint32_t speckle = noise > 245 ? 9000 : surface;
      *pixels++ = (uint16_t)(noise < 20 ? 0 : speckle);
    }
  }
}

zv_frame_t* make_frame(const struct description* d, uint32_t width, uint32_t height) {
  zv_frame_t* frame = zv_create_frame(ZV_FRAME_TYPE_DEPTH, d->format, width * height * 2, NULL);
  zv_stream_profile_t like = {.format = d->format, .width = width, .height = height};
  like.intrinsic.fx = like.disparity.fx = 600;
  like.disparity.zpd = 1000;
  like.disparity.baseline = 50;
  like.disparity.unit = 1;
  like.disparity.bitSize = 16;
  like.disparity.packMode = 2;
  like.disparity.dispIntPlace = 8;
  like.disparity.isDualCamera = !d->one_camera;
  frame->profile = new_profile(&like);
  frame->info = (struct info){d->format, d->pixel_type, width, height, 16, 1, d->corrected};
  paint(frame->pixels, width, height);
  if (!d->in_set) return frame;
  zv_frame_t* set = zv_create_frame(ZV_FRAME_TYPE_SET, d->format, 0, NULL);
  set->depth = frame;
  return set;
}

void set_frame_type(zv_frame_t* frame, int32_t type) { frame->type = type; }

uint64_t fingerprint_bytes(const void* bytes, uint64_t count) {
  const unsigned char* byte = bytes;
  uint64_t hash = 14695981039346656037u;
  for (uint64_t i = 0; i < count; ++i) hash = (hash ^ byte[i]) * 1099511628211u;
  return hash | 1;
}

uint64_t fingerprint(const zv_frame_t* frame) {
  if (frame->depth != NULL) frame = frame->depth;
  return fingerprint_bytes(frame->pixels, frame->size) ^ (uint64_t)frame->info.width << 32;
}
