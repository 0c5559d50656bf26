/* Memory runs out at every allocation in turn, once or for good: a filter answers null with an error, a kernel a status, and
 * nothing is lost, neither the process nor memory nor the next frame. Every walk runs on a fresh thread of its own process. */
#include <errno.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "isolation.h"
#include "plugin.h"

/* The process's allocator, on top of the C library's. Counts blocks, and refuses one or all from a number on. */
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
void __libc_free(void* block);

static long blocks, asked, refuse_from, refuse_to; /* one thread at a time */

static void* counted(void* block) {
  blocks += block != NULL;
  return block;
}
static bool refused(void) {
  ++asked;
  if (asked < refuse_from || asked > refuse_to) return false;
  errno = ENOMEM;
  return true;
}
void* malloc(size_t size) { return refused() ? NULL : counted(__libc_malloc(size)); }
void* calloc(size_t count, size_t size) { return refused() ? NULL : counted(__libc_calloc(count, size)); }
void* realloc(void* block, size_t size) {
  if (refused()) return NULL;
  blocks -= block != NULL;
  return counted(__libc_realloc(block, size));
}
void* memalign(size_t alignment, size_t size) {
  return refused() ? NULL : counted(__libc_memalign(alignment, size));
}
void* aligned_alloc(size_t alignment, size_t size) { return memalign(alignment, size); }
int posix_memalign(void** block, size_t alignment, size_t size) {
  return (*block = memalign(alignment, size)) == NULL ? ENOMEM : 0;
}
void free(void* block) {
  blocks -= block != NULL;
  __libc_free(block);
}

enum { HEIGHT = 48, FRAMES = 4 };

static const char* path;
static struct plugin plugin;

/* One walk: what is tried, and what the parent of its process learns. */
static struct walk {
  const struct filter_case* filter; /* or */
  const struct kernel_case* kernel; /* or neither: loading */
  uint32_t width;
  long first, last;          /* the allocations that fail */
  const char* complaint;     /* the first */
  long allocations;          /* asked for until memory came back */
  long kept;                 /* blocks that the library keeps for good after its first use */
  uint64_t expected[FRAMES]; /* outputs of an undisturbed filter for the same input again and again */
} * walk;

static void begin_shortage(void) {
  asked = 0;
  refuse_from = walk->first;
  refuse_to = walk->last;
}
static void end_shortage(void) {
  walk->allocations = asked;
  refuse_from = refuse_to = 0;
}

static void complain(bool wrong, const char* complaint) {
  if (wrong && walk->complaint == NULL) walk->complaint = complaint;
}

static bool is_expected(uint64_t seen) {
  for (int i = 0; i < FRAMES; ++i) {
    if (walk->expected[i] == 0) walk->expected[i] = seen; /* the undisturbed walk */
    if (walk->expected[i] == seen) return true;
  }
  return false;
}

/* Processes one frame, whose result shows whether the filter is `configured`. Returns whether there is one. */
static bool process(PrivFilterContext* filter, const zv_frame_t* input, bool configured) {
  zv_error* error = NULL;
  zv_frame_t* output = filter->process(filter->filter, input, &error);
  complain(output == NULL && error == NULL, "neither a frame nor an error");
  if (output == NULL) return false;
  complain(configured && !is_expected(fingerprint(output)), "wrong pixels");
  zv_delete_frame(output, NULL);
  return true;
}

static bool use_filter(PrivFilterContext* filter, const zv_frame_t* input, const zv_frame_t* other) {
  complain(filter->get_config_schema(filter->filter, NULL) == NULL, "no schema");
  bool configured = configure(filter, walk->filter, walk->width, HEIGHT);
  process(filter, input, configured);
  process(filter, input, configured);
  process(filter, other, false);
  process(filter, input, configured);
  filter->reset(filter->filter, NULL);
  configured = configure(filter, walk->filter, walk->width, HEIGHT);
  process(filter, input, configured);
  return configured;
}

static void try_filter(void) {
  const struct filter_case* what = walk->filter;
  zv_frame_t* input = make_frame(&what->frame, walk->width, HEIGHT);
  zv_frame_t* other = make_frame(&what->frame, walk->width + 16, HEIGHT + 8);
  begin_shortage();
  complain(!names_are_right(&plugin), "wrong names");
  PrivFilterContext* filter = plugin.create(what->index);
  const bool configured = filter != NULL && use_filter(filter, input, other);
  end_shortage();
  complain(configured && !process(filter, input, true), "the next frame is lost");
  if (filter == NULL) filter = plugin.create(what->index);
  complain(!configure(filter, what, walk->width, HEIGHT), "not configured with memory");
  complain(!process(filter, input, true), "no frame with memory");
  filter->destroy(filter);
  zv_delete_frame(input, NULL);
  zv_delete_frame(other, NULL);
}

static void run_kernel(void) {
  void* kernel = dlsym(plugin.library, walk->kernel->name);
  const struct buffers b = make_buffers(walk->width, HEIGHT);
  const uint64_t untouched = buffers_fingerprint(&b);
  begin_shortage();
  const int32_t status = walk->kernel->run(kernel, &b);
  end_shortage();
  const uint64_t seen = buffers_fingerprint(&b);
  complain(status == 0 ? !is_expected(seen) : seen != untouched, "wrong pixels");
  complain(status != 0 && status != -4, "another status than that of full memory");
  free_buffers(&b);
}

/* Loading fails or the library works. It may fail later, too: the C library keeps a half-loaded dependency. */
static void try_loading(void) {
  /* The C library itself ends the process when the C++ library's unique symbols find no memory. */
  dlopen("libstdc++.so.6", RTLD_NOW);
  begin_shortage();
  const bool open = open_plugin(&plugin, path, RTLD_NOW);
  end_shortage();
  complain(open && !names_are_right(&plugin), "wrong names");
}

static void run_walk(void* unused) {
  (void)unused;
  if (walk->filter != NULL) {
    try_filter();
  } else if (walk->kernel != NULL) {
    run_kernel();
  } else {
    try_loading();
  }
}

static const char* run_child(void* unused) {
  static char output[4096]; /* so that printing asks for no block */
  setvbuf(stdout, output, _IOFBF, sizeof output);
  const long before = blocks;
  on_stack(1 << 20, run_walk, unused);
  if (walk->complaint != NULL) return walk->complaint;
  if (live_objects() != 0) return "frames or profiles are left";
  if (walk->filter == NULL && walk->kernel == NULL) return NULL; /* the loader keeps what it likes */
  if (walk->first > 0) return blocks - before == walk->kept ? NULL : "memory is left";
  walk->kept = blocks - before;
  const long allocations = walk->allocations;
  on_stack(1 << 20, run_walk, unused);
  walk->allocations = allocations;
  return blocks - before == walk->kept ? NULL : "memory is left every time";
}

static int total;

/* Fails every allocation of one case in turn. Returns the number of bad ends. */
static int try_all(const char* name, const struct filter_case* filter, const struct kernel_case* kernel,
                   uint32_t width) {
  *walk = (struct walk){.filter = filter, .kernel = kernel, .width = width};
  const char* complaint = in_child(run_child, NULL);
  const long allocations = walk->allocations;
  int walks = 0, bad = 0;
  if (complains(name, complaint)) return 1;
  for (walk->first = 1; walk->first <= allocations; ++walk->first) {
    for (int for_good = 0; for_good < 2; ++for_good) {
      walk->last = for_good ? LONG_MAX : walk->first;
      walk->complaint = NULL;
      complaint = in_child(run_child, NULL);
      ++walks;
      if (complaint == NULL || ++bad > 1) continue;
      printf("%s: allocation %ld of %ld%s fails: %s\n", name, walk->first, allocations,
             for_good ? " and all later ones" : "", complaint);
    }
  }
  if (bad > 0) printf("%s: %d of %d walks end badly\n", name, bad, walks);
  total += walks;
  return bad;
}

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  path = argv[1];
  walk = shared_memory(sizeof *walk);
  int bad = try_all("loading", NULL, NULL, 0);
  if (!open_plugin(&plugin, path, RTLD_NOW)) return puts(dlerror()), 1;
  const uint32_t widths[] = {64, 24}; /* at most levels a row of 24 is too short for vectors */
  for (int w = 0; w < 2; ++w) {
    for (size_t i = 0; i < filter_case_count; ++i)
      bad += try_all(filter_cases[i].name, &filter_cases[i], NULL, widths[w]);
    for (size_t i = 0; i < kernel_case_count; ++i)
      bad += try_all(kernel_cases[i].name, NULL, &kernel_cases[i], widths[w]);
  }
  printf("%d of %d walks end badly\n", bad, total);
  return bad != 0 || total == 0;
}
