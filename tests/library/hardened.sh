#!/usr/bin/env bash
# The library guards its stack, protects its relocations and has no executable stack. Linked with the host's library, it
# binds every name at load.
# Use: hardened.sh BUILD
set -euo pipefail
library=$1/lib/libFilterProcessor.so
grep -q __stack_chk_fail <<<"$(nm --dynamic --undefined-only "$library")" || { echo "no stack protector"; exit 1; }
headers=$(readelf --program-headers --wide "$library")
grep -q GNU_RELRO <<<"$headers" || { echo "relocations stay writable"; exit 1; }
grep -q 'GNU_STACK.* RW ' <<<"$headers" || { echo "the stack is executable"; exit 1; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# A stand-in for the host's library: linking needs its name only.
echo 'void zv_create_error(void) {}' | cc -shared -fPIC -x c - -Wl,-soname,libZelvinSDK.so -o "$work/libZelvinSDK.so"
# The options are the same with and without optimisation, which takes most of a build's time.
root=$(cd "$(dirname "$0")/../.." && pwd)
cmake -S "$root" -B "$work/build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DFILTERPROCESSOR_TOOLS=OFF -DBUILD_TESTING=OFF \
  -DFILTERPROCESSOR_SDK="$work/libZelvinSDK.so" >/dev/null
cmake --build "$work/build" --target FilterProcessor >/dev/null
dynamic=$(readelf --dynamic --wide "$work/build/lib/libFilterProcessor.so")
grep -q 'NEEDED.*libZelvinSDK.so' <<<"$dynamic" || { echo "the host's library is not linked"; exit 1; }
grep -q 'BIND_NOW' <<<"$dynamic" || { echo "names are bound late"; exit 1; }
