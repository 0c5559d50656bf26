#!/usr/bin/env bash
# libzvfilter among strangers: what it exports and needs, a program in C that counts allocations under a comma locale, alone and
# with a host's functions loaded first, and the examples against an installed copy. Use: strangers.sh BUILD
set -euo pipefail
build=$(realpath "$1")
cd "$(dirname "$0")/../.."
library=$build/lib/libzvfilter.so
work=$build/strangers
rm -rf "$work"
mkdir -p "$work/locales"

exports=$(nm -D --defined-only "$library" | awk '$2 != "A" {print $3}' | grep -v '^zvf_' || true)
[ -z "$exports" ] || { echo "exported beside zvf_*: $exports"; exit 1; }
! nm -D --undefined-only "$library" | grep ' zv' || { echo "undefined functions of a host"; exit 1; }
! readelf -d "$library" | grep NEEDED | grep -vE 'lib(stdc\+\+|m|gcc_s|c)\.so|ld-linux' || { echo "needs another library"; exit 1; }

# A host whose every function ends the process.
grep -ohE '\bzv_[a-z_]+\(' include/filterprocessor/host.h | tr -d '(' | sort -u |
  sed 's/.*/void &(void) { __builtin_trap(); }/' >"$work/fake_host.c"
cc -shared -fPIC -w "$work/fake_host.c" -o "$work/libfake_host.so"
cc -std=c11 -Wall -Wextra -O1 -fno-builtin -Iinclude tests/zvfilter/stranger.c -o "$work/stranger" \
  "$library" -Wl,-rpath,"$build/lib"
localedef -i de_DE -f UTF-8 "$work/locales/de_DE.UTF-8"
export LOCPATH=$work/locales
"$work/stranger"
LD_PRELOAD=$work/libfake_host.so "$work/stranger"
unset LOCPATH

cmake --install "$build" --prefix "$work/prefix" >/dev/null
cmake -S examples -B "$work/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$work/prefix" >"$work/log" 2>&1 &&
  cmake --build "$work/cmake" >>"$work/log" 2>&1 || { cat "$work/log"; exit 1; }
"$work/cmake/run_chain" examples/chain.json
head -c 51200 "$library" >"$work/two_frames.raw"
"$work/cmake/filter_frame" 160 80 <"$work/two_frames.raw" >"$work/filtered.raw"
[ "$(stat -c %s "$work/filtered.raw")" -eq 51200 ]
