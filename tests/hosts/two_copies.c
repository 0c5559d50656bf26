/* Two copies of the library in one process, one with global symbols: each runs its own code, and both see what the program
 * writes to the exported limits. */
#include <stdio.h>
#include <string.h>

#include <filterprocessor/speckle.h>

#include "plugin.h"

/* The program's own object takes the place of the libraries'. */
int32_t Depth_MaxSpeckleSize_640x480 = 480;

static const char* own_file;
static const char* strange_file;

/* Remembers where code comes from that is neither in `own_file` nor in this program. */
static void check_code(const void* code) {
  Dl_info found, own;
  if (dladdr(code, &found) == 0 || dladdr((const void*)check_code, &own) == 0) {
    strange_file = "no file";
  } else if (strcmp(found.dli_fname, own_file) != 0 && found.dli_fbase != own.dli_fbase) {
    strange_file = found.dli_fname;
  }
}

static int check_copy(const struct plugin* plugin, const char* path, const char* how) {
  int wrong = 0;
  own_file = path;
  for (size_t i = 0; i < filter_case_count; ++i) {
    strange_file = NULL;
    const bool works = try_case(plugin, &filter_cases[i], 64, 48) != 0;
    if (works && strange_file == NULL) continue;
    ++wrong, printf("%s: %s: %s\n", how, filter_cases[i].name, works ? strange_file : "no frame");
  }
  return wrong;
}

/* Whether the default limit, one pixel below a region and then its size, decides what stays. */
static bool limit_counts(const struct plugin* plugin) {
  __typeof__(depth_api_softfilter)* softfilter = FIND(plugin->library, depth_api_softfilter);
  bool right = true;
  for (int32_t size = 19; size <= 20; ++size) {
    uint16_t image[20];
    uint8_t work[9 * 20];
    for (int i = 0; i < 20; ++i) image[i] = 1000;
    Depth_MaxSpeckleSize_640x480 = size;
    softfilter(work, image, NULL, 20, 1, NULL, 0, 0, 16, 0, 4, 4, 0, 1);
    right = right && image[7] == (size < 20 ? 1000 : 0);
  }
  return right;
}

int main(int argc, char** argv) {
  if (argc != 3) return 2; /* PLUGIN COPY */
  struct plugin first, second;
  if (!open_plugin(&first, argv[1], RTLD_NOW | RTLD_GLOBAL) ||
      !open_plugin(&second, argv[2], RTLD_NOW | RTLD_LOCAL)) {
    puts(dlerror());
    return 1;
  }
  watch_call = check_code;
  int wrong =
      check_copy(&first, argv[1], "the global copy") + check_copy(&second, argv[2], "the local copy");
  if (!limit_counts(&first) || !limit_counts(&second)) ++wrong, puts("the program's limit is not seen");
  dlclose(first.library);
  wrong += check_copy(&second, argv[2], "the local copy, left alone");
  if (live_objects() != 0) ++wrong, puts("frames are left");
  return wrong != 0;
}
