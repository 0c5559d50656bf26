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
relink() { cmake -B "$1" -DFILTERPROCESSOR_SDK="$2" >/dev/null && cmake --build "$1" >/dev/null; }
trap 'relink "$1" ""; rm -rf "$work"' EXIT
# A stand-in for the host's library: linking needs its name only.
echo 'void zv_create_error(void) {}' | cc -shared -fPIC -x c - -Wl,-soname,libZelvinSDK.so -o "$work/libZelvinSDK.so"
relink "$1" "$work/libZelvinSDK.so"
dynamic=$(readelf --dynamic --wide "$library")
grep -q 'NEEDED.*libZelvinSDK.so' <<<"$dynamic" || { echo "the host's library is not linked"; exit 1; }
grep -q 'BIND_NOW' <<<"$dynamic" || { echo "names are bound late"; exit 1; }
