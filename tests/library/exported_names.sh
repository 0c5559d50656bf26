#!/usr/bin/env bash
# Compares what the library exports with the list beside this script. With --write, writes the list.
set -euo pipefail
here=$(dirname "$0")
names() {
  nm --dynamic --defined-only --demangle "$1/lib/libFilterProcessor.so" | cut -d' ' -f2- |
    sed -e 's/^[TtVWw] //' -e 's/^[BDGSR] \(.*\)/\1 (data)/' | LC_ALL=C sort -u
}
if [ "${2-}" = --write ]; then
  names "$1" >"$here/exported_names.txt"
else
  diff -u "$here/exported_names.txt" <(names "$1")
fi
