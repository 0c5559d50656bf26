/* Hosts that are libraries themselves, which the program opens: one that lacks a function, and one with local symbols. The
 * program has no host functions of its own. */
#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

#include "isolation.h"
#include "plugin.h"

static const char *path, *whole_host, *lacking_host;

/* Fills a hole with the host's functions, wherever they are. */
static const char* use_filter(void* plugin, void* host) {
  const struct description description = {.in_set = false};
  zv_error* error = NULL;
  PrivFilterContext* filter = FIND(plugin, zv_create_filter)(1);
  const zv_frame_t* input = FIND(host, make_frame)(&description, 32, 16);
  return filter->process(filter->filter, input, &error) != NULL ? NULL : "no frame";
}

/* An incomplete host is refused by the name of what it lacks. */
static const char* lack_a_function(void* unused) {
  (void)unused;
  if (dlopen(lacking_host, RTLD_NOW | RTLD_GLOBAL) == NULL) return "the host is not opened";
  if (dlopen(path, RTLD_NOW) != NULL) return "opened for a host that lacks a function";
  return strstr(dlerror(), "zv_frameset_push_frame") != NULL ? NULL : "the missing function is not named";
}

/* A host with local symbols gives them to all before it opens the plug-in. */
static const char* raise_local_host(void* unused) {
  (void)unused;
  void* host = dlopen(whole_host, RTLD_NOW | RTLD_LOCAL);
  if (host == NULL) return "the host is not opened";
  if (dlopen(path, RTLD_NOW) != NULL) return "opened although the host's functions are local";
  if (strstr(dlerror(), "undefined symbol: zv_") == NULL) return "the missing function is not named";
  if (dlopen(whole_host, RTLD_NOW | RTLD_NOLOAD | RTLD_GLOBAL) != host) return "another host is opened";
  void* plugin = dlopen(path, RTLD_NOW);
  return plugin != NULL ? use_filter(plugin, host) : "refused beside a raised host";
}

/* Without a host's functions the filters can still be listed when names are bound late. */
static const char* only_list(void* unused) {
  (void)unused;
  void* plugin = dlopen(path, RTLD_LAZY);
  return plugin != NULL && FIND(plugin, zv_get_filter_count)() == 9 ? NULL : "not listed";
}

int main(int argc, char** argv) {
  if (argc != 4) return 2; /* PLUGIN HOST LACKING_HOST */
  path = argv[1], whole_host = argv[2], lacking_host = argv[3];
  const bool lacking = complains("a host that lacks a function", in_child(lack_a_function, NULL));
  const bool local = complains("a host with local symbols", in_child(raise_local_host, NULL));
  const bool listing = complains("no host", in_child(only_list, NULL));
  return lacking || local || listing;
}
