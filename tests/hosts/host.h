/* A host in C: the functions of filterprocessor/host.h in memory, without any C++ run-time. */
#ifndef FILTERPROCESSOR_TESTS_HOSTS_HOST_H
#define FILTERPROCESSOR_TESTS_HOSTS_HOST_H

#include <filterprocessor/host.h>

/* What a depth frame is made of. Its pixels are a scene with surfaces, speckles and holes. */
struct description {
  int32_t pixel_type, format;
  bool one_camera, corrected, in_set;
};

/* A frame or set of the caller's. */
zv_frame_t* make_frame(const struct description* description, uint32_t width, uint32_t height);

/* A number that tells the depth pixels and the width of one frame or set from another's; never 0. */
uint64_t fingerprint(const zv_frame_t* frame);
uint64_t fingerprint_bytes(const void* bytes, uint64_t count);

/* The scene of make_frame(). */
void paint(uint16_t* pixels, uint32_t width, uint32_t height);

/* Makes the frame report another type. */
void set_frame_type(zv_frame_t* frame, int32_t type);

/* Frames and profiles that somebody still refers to. Errors belong to the host, which keeps the last 64. */
long live_objects(void);

/* Called by every host function that the filters call, with the place it returns to. May be null. */
extern void (*watch_call)(const void* caller);

#endif
