#!/usr/bin/env bash
# One chain file gives the same bytes everywhere: the tool, the C library and whatever runs chains beside them.
# Use: agree.sh BUILD [NAME COMMAND]...   each command is run with: CHAIN DIR FRAME.raw... and writes DIR/FRAME.raw
set -euo pipefail
build=$(realpath "$1")
shift
here=$(cd "$(dirname "$0")" && pwd)
work=$build/chains
rm -rf "$work"
mkdir -p "$work/c_library"
tool=$build/bin/zvfilter
# Frames without change: a chain that has no step.
"$tool" run --chain '{"version": 1, "steps": []}' camera:frames=6,size=160x100 --format raw -o "$work/frames" >/dev/null
"$tool" run --chain "$here/chain.json" --size 160x100 "$work/frames" -o "$work/tool" >/dev/null
cc -std=c11 -D_GNU_SOURCE -Wall -Wextra -Werror -I"$here/../../include" "$here/run_chain.c" -o "$work/run_chain" -L"$build/lib" -lzvfilter \
  -Wl,-rpath,"$build/lib"
"$work/run_chain" "$here/chain.json" "$work/c_library" "$work"/frames/*.raw
[ "$(find "$work/tool" -name '*.raw' -size +40k | wc -l)" -eq 6 ]
diff -r -x .zvfilter.json "$work/tool" "$work/c_library"
while [ $# -ge 2 ]; do
  mkdir -p "$work/$1"
  # shellcheck disable=SC2086 # a command and its words
  $2 "$here/chain.json" "$work/$1" "$work"/frames/*.raw
  diff -r -x .zvfilter.json "$work/tool" "$work/$1"
  shift 2
done
echo "the same bytes: $(cd "$work" && ls -d */ | grep -v frames/ | tr -d '/\n' | sed 's/c_library/C library, /')"
