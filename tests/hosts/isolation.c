#include "isolation.h"

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>

static void* map(size_t size, int flags) {
  void* memory = mmap(NULL, size, PROT_READ | PROT_WRITE, MAP_ANONYMOUS | flags, -1, 0);
  if (memory != MAP_FAILED) return memory;
  perror("mmap");
  exit(2);
}

void* shared_memory(size_t size) { return map(size, MAP_SHARED); }

static const char** said;

void end_child(const char* complaint) {
  *said = complaint;
  _exit(0);
}

const char* in_child(const char* (*body)(void* argument), void* argument) {
  if (said == NULL) said = shared_memory(sizeof *said);
  *said = "the process has ended without a word";
  fflush(stdout);
  const pid_t child = fork();
  if (child == 0) {
    const struct rlimit none = {0, 0};
    setrlimit(RLIMIT_CORE, &none);
    alarm(120);
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, STDOUT_FILENO);
    dup2(nowhere, STDERR_FILENO);
    end_child(body(argument));
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child) return "no child process";
  if (WIFSIGNALED(status)) return strsignal(WTERMSIG(status));
  return *said;
}

bool complains(const char* title, const char* complaint) {
  if (complaint != NULL) printf("%s: %s\n", title, complaint);
  return complaint != NULL;
}

struct call {
  void (*body)(void* argument);
  void* argument;
};

static void* run_call(void* argument) {
  const struct call* call = argument;
  call->body(call->argument);
  return NULL;
}

size_t on_stack(size_t size, void (*body)(void* argument), void* argument) {
  enum { GUARD = 65536, PAINT = 0xa5 };
  unsigned char* memory = map(GUARD + size, MAP_PRIVATE);
  mprotect(memory, GUARD, PROT_NONE);
  unsigned char* stack = memory + GUARD;
  memset(stack, PAINT, size);
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstack(&attributes, stack, size);
  struct call call = {body, argument};
  pthread_t thread;
  if (pthread_create(&thread, &attributes, run_call, &call) != 0) {
    perror("pthread_create");
    exit(2);
  }
  pthread_join(thread, NULL);
  pthread_attr_destroy(&attributes);
  size_t untouched = 0;
  while (untouched < size && stack[untouched] == PAINT) ++untouched;
  munmap(memory, GUARD + size);
  return size - untouched;
}
