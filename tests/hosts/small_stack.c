/* Everything runs on a thread whose stack has 64 KiB, the C library's own share included. Prints how many bytes of it each
 * operation uses, at each processor level. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "isolation.h"
#include "plugin.h"

enum { SMALL = 64 * 1024, LARGE = 4 * 1024 * 1024 };

#if defined(__aarch64__)
static const char* const levels[] = {"scalar", "neon"};
#else
static const char* const levels[] = {"scalar", "avx2", "avx512"};
#endif
enum { LEVELS = sizeof levels / sizeof *levels };

static const struct {
  uint32_t width, height;
} sizes[] = {{1280, 800}, {848, 480}, {640, 400}, {333, 257}, {31, 7}};

enum operation { MAKE, PROCESS, REFUSE, CLEAN, OPERATIONS };

/* The deepest use of the stack by each operation of a case at each level, over all sizes. */
static size_t (*used)[LEVELS][OPERATIONS];
static const char* path;
static struct plugin plugin;

/* What runs next on a small stack. */
static struct task {
  int level, row, size;
  size_t stack;
  enum operation operation;
  PrivFilterContext* filter;
  zv_frame_t *input, *output;
  struct buffers buffers;
  void* kernel;
} task;

static void nothing(void* unused) { (void)unused; }

static void run_kernel(void* kernel_case) {
  ((const struct kernel_case*)kernel_case)->run(task.kernel, &task.buffers);
}

static void run_operation(void* filter_case) {
  const struct filter_case* what = filter_case;
  zv_error* error = NULL;
  switch (task.operation) {
    case MAKE:
      if (plugin.count() == 9 && plugin.name(0) != NULL) task.filter = plugin.create(what->index);
      if (task.filter == NULL || task.filter->get_config_schema(task.filter->filter, &error) == NULL)
        abort();
      if (!configure(task.filter, what, sizes[task.size].width, sizes[task.size].height)) abort();
      break;
    case PROCESS:
    case REFUSE:
      task.output = task.filter->process(task.filter->filter, task.input, &error);
      break;
    default:
      task.filter->reset(task.filter->filter, &error);
      task.filter->destroy(task.filter);
  }
}

static void measure(enum operation operation, void (*body)(void*), const void* argument) {
  task.operation = operation;
  const size_t bytes = on_stack(task.stack, body, (void*)argument);
  size_t* most = &used[task.row][task.level][operation];
  if (bytes > *most) *most = bytes;
}

static const char* use_filter(void* filter_case) {
  const struct filter_case* what = filter_case;
  task.input = make_input(what, sizes[task.size].width, sizes[task.size].height);
  measure(MAKE, run_operation, what);
  for (int frame = 0; frame < 3; ++frame) {
    measure(PROCESS, run_operation, what);
    if (task.output == NULL) return "no frame";
    zv_delete_frame(task.output, NULL);
  }
  set_frame_type(task.input, 1);
  measure(REFUSE, run_operation, what);
  if (task.output != NULL) return "a frame of a wrong type is not refused";
  measure(CLEAN, run_operation, what);
  return NULL;
}

static const char* use_kernel(void* kernel_case) {
  task.kernel = dlsym(plugin.library, ((const struct kernel_case*)kernel_case)->name);
  if (task.kernel == NULL) return "no such kernel";
  task.buffers = make_buffers((int32_t)sizes[task.size].width, (int32_t)sizes[task.size].height);
  fill_buffers(&task.buffers);
  measure(PROCESS, run_kernel, kernel_case);
  return NULL;
}

/* Every size on the small stack and, where that breaks, on a large one to learn the depth. */
static void fill_row(const char* (*use)(void*), const void* what) {
  size_t* frames = &used[task.row][task.level][PROCESS];
  for (task.size = 0; task.size < (int)(sizeof sizes / sizeof *sizes); ++task.size) {
    task.stack = SMALL;
    if (in_child(use, (void*)what) == NULL) continue;
    task.stack = LARGE;
    if (in_child(use, (void*)what) != NULL || *frames <= SMALL)
      *frames = LARGE; /* not for its depth alone */
  }
  ++task.row;
}

static const char* fill_level(void* unused) {
  (void)unused;
  setenv("FILTERPROCESSOR_CPU", levels[task.level], 1);
  if (!open_plugin(&plugin, path, RTLD_NOW)) return "the library is not opened";
  for (size_t i = 0; i < filter_case_count; ++i) fill_row(use_filter, &filter_cases[i]);
  for (size_t i = 0; i < kernel_case_count; ++i) fill_row(use_kernel, &kernel_cases[i]);
  return NULL;
}

/* Returns how many operations are too deep, or have not been seen. */
static int print_row(const char* name, size_t row, enum operation first, enum operation last) {
  int deep = 0;
  printf("%-40s", name);
  for (int level = 0; level < LEVELS; ++level) {
    for (enum operation o = first; o <= last; ++o) {
      const size_t bytes = used[row][level][o];
      deep += bytes > SMALL || bytes == 0;
      printf(" %6zu", bytes);
    }
    printf(level + 1 < LEVELS ? " |" : "\n");
  }
  return deep;
}

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  path = argv[1];
  used = shared_memory((filter_case_count + kernel_case_count) * sizeof *used);
  int deep = 0;
  for (task.level = 0; task.level < LEVELS; ++task.level) {
    if (in_child(fill_level, NULL) != NULL)
      ++deep, printf("%s: the library is not opened\n", levels[task.level]);
    printf("%s%s", levels[task.level],
           task.level + 1 < LEVELS ? " | " : ": bytes of the stack to make and configure, ");
  }
  printf("process, refuse a frame, destroy; an empty thread uses %zu\n", on_stack(SMALL, nothing, NULL));
  for (size_t i = 0; i < filter_case_count; ++i) deep += print_row(filter_cases[i].name, i, MAKE, CLEAN);
  for (size_t i = 0; i < kernel_case_count; ++i) {
    deep += print_row(kernel_cases[i].name, filter_case_count + i, PROCESS, PROCESS);
  }
  printf("%d of the operations need more than %d\n", deep, SMALL);
  return deep != 0;
}
