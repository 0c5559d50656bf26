#!/usr/bin/env bash
# needs: gcc libc6-dev
# A program that was built elsewhere: it has no header.
cat >fill.c <<'C'
#include <stdint.h>
#include <stdio.h>
#include <dlfcn.h>
int main(void) {
  void* library = dlopen("libzvfilter.so.1", RTLD_NOW);
  if (library == NULL) return puts(dlerror()), 1;
  const char* (*version)(void) = (const char* (*)(void))dlsym(library, "zvf_version");
  size_t (*count)(void) = (size_t(*)(void))dlsym(library, "zvf_filter_count");
  return puts(version()) >= 0 && count() == 9 ? 0 : 1;
}
C
cc fill.c -o fill
./fill | grep '^1\.'
