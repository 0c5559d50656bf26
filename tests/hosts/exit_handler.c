/* The library serves until the process has ended: exit handlers that are older than it, and threads that outlive main. */
#include <pthread.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include "isolation.h"
#include "plugin.h"

static struct plugin plugin;
static const char* path;
static atomic_int rounds;

static const char* use_filters(void) {
  if (!names_are_right(&plugin)) return "the names are wrong";
  for (size_t i = 0; i < filter_case_count; ++i) {
    if (try_case(&plugin, &filter_cases[i], 64, 48) == 0) return filter_cases[i].name;
  }
  return NULL;
}

static void* use_for_ever(void* unused) {
  (void)unused;
  for (;; ++rounds) {
    const char* complaint = use_filters();
    if (complaint != NULL) end_child(complaint);
  }
  return NULL;
}

/* Runs after the library's own handlers, which were registered later. */
static void use_late(void) { end_child(use_filters()); }

static void wait_for_thread(void) {
  for (const int before = rounds; rounds < before + 3;) usleep(1000);
  end_child(NULL);
}

static const char* leave_main(void* with_thread) {
  atexit(with_thread != NULL ? wait_for_thread : use_late);
  if (!open_plugin(&plugin, path, RTLD_NOW)) return "the library is not opened";
  if (!names_are_right(&plugin)) return "wrong names before the end";
  if (with_thread != NULL) {
    pthread_t thread;
    pthread_create(&thread, NULL, use_for_ever, NULL);
    while (rounds == 0) usleep(1000);
  }
  exit(0);
}

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  path = argv[1];
  const bool handler = complains("an exit handler uses filters", in_child(leave_main, NULL));
  const bool thread = complains("a thread outlives main", in_child(leave_main, &plugin));
  return handler || thread;
}
