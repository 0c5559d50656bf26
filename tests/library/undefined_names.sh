#!/usr/bin/env bash
# The library takes from outside only versioned names of the C and C++ runtime and the host's functions, and none that
# throws or takes memory by throwing when there is none.
set -euo pipefail
header=$(dirname "$0")/../../include/filterprocessor/host.h
strange=$(nm --dynamic --undefined-only "$1/lib/libFilterProcessor.so" | awk '{print $NF}' |
  grep -vE '@(GLIBC|GLIBCXX|CXXABI|GCC)_[0-9.]+$' |
  grep -vE '^(_ITM_(de)?registerTMCloneTable|__gmon_start__|__cxa_finalize|_ZGTt.*)$' |
  while read -r name; do grep -qE "\b$name\(" "$header" || echo "$name"; done)
[ -z "$strange" ] || { echo "not the runtime's and not the host's:" $strange; exit 1; }
thrown=$(nm --dynamic --undefined-only "$1/lib/libFilterProcessor.so" | awk '{print $NF}' |
  grep -E '^(_Zn[aw]|__cxa_(throw|allocate_exception)|_ZSt[0-9]+__throw_)' | grep -v '__throw_system_error' || true)
[ -z "$thrown" ] || { echo "throws when there is no memory:" $thrown; exit 1; }
