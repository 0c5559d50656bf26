#!/usr/bin/env bash
# Objects compiled for one processor level share no function with the rest of the program: the linker could
# otherwise keep their copy of an inline function and run it on a processor that lacks the level.
set -euo pipefail
status=0
objects=$(find "$1" -path '*filterprocessor_kernels_*.dir*' -name '*.o')
[ -n "$objects" ] || { echo "no level objects found in $1"; exit 1; }
for object in $objects; do
  level=$(sed -E 's/.*filterprocessor_kernels_([a-z0-9]+)\.dir.*/\1/' <<<"$object")
  strange=$(nm --defined-only --demangle "$object" | grep -E ' [TWVuDBRG] ' |
    grep -vE " [TWVuDBRG] (vtable for |typeinfo for |typeinfo name for )?(guard variable for )?.*filterprocessor::$level::" || true)
  [ -z "$strange" ] || { echo "$object: $strange"; status=1; }
done
exit $status
