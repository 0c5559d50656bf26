/* Everything runs on a thread whose stack has 64 KiB, the C library's own share included. Prints how many bytes of it each
 * case uses at each processor level, in frames of all sizes. */
#include <stdio.h>
#include <stdlib.h>

#include "isolation.h"
#include "plugin.h"

enum { STACK = 64 * 1024 };

#if defined(__aarch64__)
static const char* const levels[] = {"scalar", "neon"};
#else
static const char* const levels[] = {"scalar", "avx2", "avx512"};
#endif
enum { LEVELS = sizeof levels / sizeof *levels };

static const struct {
  uint32_t width, height;
} sizes[] = {{1280, 800}, {848, 480}, {640, 400}, {333, 257}, {31, 7}};

static const char* path;

/* What runs next on a small stack. */
static struct task {
  const char* level;
  const struct filter_case* filter; /* or */
  const struct kernel_case* kernel;
  uint32_t width, height;
  bool works;
  size_t* used; /* at most, in memory that children share */
} task;

static void nothing(void* unused) { (void)unused; }

static void run_task(void* plugin) {
  task.works = names_are_right(plugin) &&
               (task.filter != NULL ? try_case(plugin, task.filter, task.width, task.height) != 0
                                    : try_kernel(plugin, task.kernel, task.width, task.height) != 0);
}

static const char* use_small_stack(void* unused) {
  (void)unused;
  struct plugin plugin;
  setenv("FILTERPROCESSOR_CPU", task.level, 1);
  if (!open_plugin(&plugin, path, RTLD_NOW)) return "the library is not opened";
  for (size_t i = 0; i < sizeof sizes / sizeof *sizes; ++i) {
    task.width = sizes[i].width;
    task.height = sizes[i].height;
    const size_t used = on_stack(STACK, run_task, &plugin);
    if (used > *task.used) *task.used = used;
    if (!task.works) return "wrong results";
  }
  return NULL;
}

/* Returns at how many levels the case ends badly. */
static int print_row(const char* name, const struct filter_case* filter,
                     const struct kernel_case* kernel) {
  int bad = 0;
  printf("%-40s", name);
  for (int level = 0; level < LEVELS; ++level) {
    *task.used = 0;
    task.level = levels[level];
    task.filter = filter;
    task.kernel = kernel;
    const char* complaint = in_child(use_small_stack, NULL);
    if (complaint == NULL) {
      printf(" %6zu", *task.used);
    } else {
      ++bad, printf(" %s at %s", complaint, levels[level]);
    }
  }
  putchar('\n');
  return bad;
}

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  path = argv[1];
  task.used = shared_memory(sizeof *task.used);
  int bad = 0;
  printf("an empty thread uses %zu bytes\n", on_stack(STACK, nothing, NULL));
  for (size_t i = 0; i < filter_case_count; ++i)
    bad += print_row(filter_cases[i].name, &filter_cases[i], NULL);
  for (size_t i = 0; i < kernel_case_count; ++i)
    bad += print_row(kernel_cases[i].name, NULL, &kernel_cases[i]);
  return bad != 0;
}
