#!/usr/bin/env bash
# needs: gcc libc6-dev
# A host in C that only lists the filters: it has none of the functions that the filters call.
plugin=$(dpkg -L libfilterprocessor-plugin | grep '/filterprocessor/libFilterProcessor.so$')
cat >host.c <<'C'
#include <dlfcn.h>
#include <stdio.h>
int main(int argc, char** argv) {
  void* plugin = argc > 1 ? dlopen(argv[1], RTLD_LAZY) : NULL;
  if (plugin == NULL) return puts(dlerror()), 1;
  int (*count)(void) = (int (*)(void))dlsym(plugin, "zv_get_filter_count");
  const char* (*name)(int) = (const char* (*)(int))dlsym(plugin, "zv_get_filter_name");
  for (int i = 0; i < count(); ++i) puts(name(i));
  return 0;
}
C
cc host.c -o host
./host "$plugin" >names
[ "$(wc -l <names)" -eq 9 ]
grep -qx SpatialAdvancedFilter names
