#!/usr/bin/env bash
# Installs the library and builds a host in C against the installed copy, by CMake package and by pkg-config.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$1" --prefix "$work/prefix" >/dev/null
cmake -S "$here/consumer" -B "$work/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$work/prefix" >"$work/log" 2>&1 &&
  cmake --build "$work/cmake" >>"$work/log" 2>&1 || { cat "$work/log"; exit 1; }
"$work/cmake/consumer"
pc=$(dirname "$(find "$work/prefix" -name filterprocessor.pc)")
PKG_CONFIG_PATH=$pc cc -std=c11 "$here/consumer/consumer.c" -o "$work/consumer" \
  $(PKG_CONFIG_PATH=$pc pkg-config --cflags --libs filterprocessor) -Wl,-rpath,"$(dirname "$pc")"
"$work/consumer"
# The filter classes serve C++ callers.
classes=$work/prefix/include/filterprocessor/classes
(cd "$classes" && ls filters/*.h) | sed 's/.*/#include "&"/' |
  c++ -std=c++20 -fsyntax-only -x c++ -I"$work/prefix/include" -I"$classes" -
