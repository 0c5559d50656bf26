#!/usr/bin/env bash
# A host in C, without any C++ run-time, loads the plug-in of a build as strangers do.
# Use: run.sh BUILD NAME
set -euo pipefail
cd "$(dirname "$0")"
build=$(cd "$OLDPWD" && realpath "$1")
name=$2
work=$build/hosts
mkdir -p "$work"

flags=(-std=c11 -Wall -Wextra -Werror -O2 -D_GNU_SOURCE -I../../include -pthread)
parts=(plugin.c host.c isolation.c)
arguments=("$build/lib/libFilterProcessor.so")
case $name in
  two_copies)
    cp "${arguments[0]}" "$work/libcopy.so"
    arguments+=("$work/libcopy.so")
    ;;
  lazy_host)
    parts=(isolation.c)
    cc "${flags[@]}" -shared -fPIC host.c -o "$work/libhost.so"
    cc "${flags[@]}" -shared -fPIC -Dzv_frameset_push_frame=another_name host.c -o "$work/libhost_lacking.so"
    arguments+=("$work/libhost.so" "$work/libhost_lacking.so")
    ;;
  locale)
    mkdir -p "$work/locales"
    localedef -i de_DE -f UTF-8 "$work/locales/de_DE.UTF-8"
    arguments+=(de_DE.UTF-8)
    ;;
esac
# The C library's names are bound at once: what a measured call needs is the plug-in's own.
cc "${flags[@]}" "$name.c" "${parts[@]}" -rdynamic -Wl,-z,now -o "$work/$name"
headers=$(readelf --dynamic --wide "$work/$name")
! grep -E 'NEEDED.*(stdc|libc)\+\+' <<<"$headers" || { echo "$name links a C++ run-time"; exit 1; }
LOCPATH=$work/locales "$work/$name" "${arguments[@]}" >"$work/$name.log" 2>&1 || { tail -n 100 "$work/$name.log"; exit 1; }
