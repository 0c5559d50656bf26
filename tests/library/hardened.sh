#!/usr/bin/env bash
# The library and the tool guard their stacks, protect their relocations and their control flow and have no executable
# stack. The tool, and the library when linked with the host's, bind every name at load.
# Use: hardened.sh BUILD
set -euo pipefail

complain() { echo "$1"; exit 1; }

# expect_guards FILE FUNCTION: the function is one of the file's.
expect_guards() {
  local undefined headers notes
  undefined=$(nm --dynamic --undefined-only "$1")
  grep -q __stack_chk_fail <<<"$undefined" || complain "$1: no stack protector"
  headers=$(readelf --program-headers --wide "$1")
  grep -q GNU_RELRO <<<"$headers" || complain "$1: relocations stay writable"
  grep -q 'GNU_STACK.* RW ' <<<"$headers" || complain "$1: the stack is executable"
  grep -q 'Machine:.*X86-64' <<<"$(readelf --file-header "$1")" || return 0
  notes=$(readelf --notes --wide "$1")
  grep -q 'x86 feature:.*SHSTK' <<<"$notes" || complain "$1: no shadow stack"
  grep -q endbr64 <<<"$(objdump --disassemble="$2" "$1")" || complain "$1: no marks for indirect branches"
}

# expect_bound_at_load FILE
expect_bound_at_load() {
  grep -q BIND_NOW <<<"$(readelf --dynamic --wide "$1")" || complain "$1: names are bound late"
}

expect_guards "$1/lib/libFilterProcessor.so" zv_create_filter
tool=$1/bin/zvfilter
if [ -e "$tool" ]; then
  expect_guards "$tool" main
  expect_bound_at_load "$tool"
  grep -q '_chk@' <<<"$(nm --dynamic --undefined-only "$tool")" || complain "$tool: no checked calls of the C library"
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# A stand-in for the host's library: linking needs its name only.
echo 'void zv_create_error(void) {}' | cc -shared -fPIC -x c - -Wl,-soname,libZelvinSDK.so -o "$work/libZelvinSDK.so"
# The options are the same with and without optimisation, which takes most of a build's time.
root=$(cd "$(dirname "$0")/../.." && pwd)
cmake -S "$root" -B "$work/build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DFILTERPROCESSOR_TOOLS=OFF -DBUILD_TESTING=OFF \
  -DFILTERPROCESSOR_SDK="$work/libZelvinSDK.so" >/dev/null
cmake --build "$work/build" --target FilterProcessor >/dev/null
library=$work/build/lib/libFilterProcessor.so
grep -q 'NEEDED.*libZelvinSDK.so' <<<"$(readelf --dynamic --wide "$library")" || complain "the host's library is not linked"
expect_bound_at_load "$library"
