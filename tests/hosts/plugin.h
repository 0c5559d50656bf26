/* What the hosts try: every filter on each of its paths, and every exported kernel. */
#ifndef FILTERPROCESSOR_TESTS_HOSTS_PLUGIN_H
#define FILTERPROCESSOR_TESTS_HOSTS_PLUGIN_H

#include <dlfcn.h>

#include <filterprocessor/filter_processor.h>

#include "host.h"

struct plugin {
  void* library;
  int32_t (*count)(void);
  const char* (*name)(int32_t index);
  PrivFilterContext* (*create)(int32_t index);
};
/* False, with the reason in dlerror(), when it cannot be opened. */
bool open_plugin(struct plugin* plugin, const char* path, int flags);
/* Whether it lists the nine filters. */
bool names_are_right(const struct plugin* plugin);

/* The function or object of that name in an open library. */
#define FIND(library, name) ((__typeof__(name)*)dlsym(library, #name))

struct filter_case {
  const char* name; /* begins with the filter's */
  int32_t index;
  const char* values; /* separated by blanks; %1$u and %2$u are half the frame's width and height */
  struct description frame;
};
extern const struct filter_case filter_cases[];
extern const size_t filter_case_count;

/* Whether the filter takes the case's values for frames of this size. */
bool configure(PrivFilterContext* filter, const struct filter_case* what, uint32_t width,
               uint32_t height);
/* A filter's whole life: it is made, configured, given two frames, of which the second shows what a history is worth, and one
 * to refuse, reset and destroyed. Returns the fingerprint of what it made, or 0 if anything failed. */
uint64_t try_case(const struct plugin* plugin, const struct filter_case* what, uint32_t width,
                  uint32_t height);

/* Buffers of a kernel, each with room for the whole image. */
struct buffers {
  uint16_t *pixels, *other, *table;
  uint8_t* work;
  int32_t width, height;
};
struct kernel_case {
  const char* name;
  int32_t (*run)(void* function, const struct buffers* b);
};
extern const struct kernel_case kernel_cases[];
extern const size_t kernel_case_count;

/* Filled with the scene of make_frame(). */
struct buffers make_buffers(uint32_t width, uint32_t height);
void free_buffers(const struct buffers* b);
uint64_t buffers_fingerprint(const struct buffers* b);
/* Runs the kernel once. Returns the fingerprint of what it made, or 0 if anything failed. */
uint64_t try_kernel(const struct plugin* plugin, const struct kernel_case* what, uint32_t width,
                    uint32_t height);

#endif
