/* Everything runs on a thread whose stack has 64 KiB, the C library's own share included. Prints how many bytes of it each
 * operation uses, at each processor level. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "isolation.h"
#include "plugin.h"

enum { SMALL = 64 * 1024, LARGE = 4 * 1024 * 1024, ROWS = 64 };

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
static const char* const operation_names[] = {"made, configured", "frames", "refused frame",
                                              "reset, destroyed"};

/* Bytes used by the deepest case so far; what broke on the small stack. */
struct row {
  size_t used[LEVELS][OPERATIONS];
  const char* broken[LEVELS];
};
static struct row* rows;
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
  const size_t used = on_stack(task.stack, body, (void*)argument);
  size_t* most = &rows[task.row].used[task.level][operation];
  if (used > *most) *most = used;
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

/* One row for every size, on the small stack and, where that breaks, on a large one to learn the depth. */
static void fill_row(const char* (*use)(void*), const void* what) {
  for (task.size = 0; task.size < (int)(sizeof sizes / sizeof *sizes); ++task.size) {
    task.stack = SMALL;
    const char* complaint = in_child(use, (void*)what);
    if (complaint == NULL) continue;
    rows[task.row].broken[task.level] = complaint;
    task.stack = LARGE;
    in_child(use, (void*)what);
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

static int print_row(const char* name, const struct row* row, enum operation operation) {
  int broken = 0;
  printf("%-40s%-18s", name, operation_names[operation]);
  for (int level = 0; level < LEVELS; ++level) {
    const bool deep = row->used[level][operation] > SMALL || row->used[level][operation] == 0;
    printf(" %8zu%c", row->used[level][operation], deep ? '!' : ' ');
    broken += deep;
  }
  puts("");
  return broken;
}

int main(int argc, char** argv) {
  if (argc != 2 || filter_case_count + kernel_case_count > ROWS) return 2;
  path = argv[1];
  rows = shared_memory(ROWS * sizeof *rows);
  int broken = 0;
  for (task.level = 0; task.level < LEVELS; ++task.level) {
    task.row = 0;
    const char* complaint = in_child(fill_level, NULL);
    if (complaint != NULL) ++broken, printf("%s: %s\n", levels[task.level], complaint);
  }
  printf("bytes of the stack, of which an empty thread uses %zu:\n%-58s", on_stack(SMALL, nothing, NULL),
         "");
  for (int level = 0; level < LEVELS; ++level) printf(" %9s", levels[level]);
  puts("");
  const struct row* row = rows;
  for (size_t i = 0; i < filter_case_count; ++i, ++row) {
    for (enum operation o = MAKE; o < OPERATIONS; ++o) broken += print_row(filter_cases[i].name, row, o);
  }
  for (size_t i = 0; i < kernel_case_count; ++i, ++row)
    broken += print_row(kernel_cases[i].name, row, PROCESS);
  for (row = rows; row < rows + ROWS; ++row) {
    for (int level = 0; level < LEVELS; ++level) broken += row->broken[level] != NULL;
  }
  printf("%d entries are too deep\n", broken);
  return broken != 0;
}
