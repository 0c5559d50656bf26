#!/usr/bin/env bash
# Hosts in C, without any C++ run-time, load the plug-in of a build as strangers do.
# Use: run.sh BUILD [NAME]
set -euo pipefail
cd "$(dirname "$0")"
build=$(cd "$OLDPWD" && realpath "$1")
plugin=$build/lib/libFilterProcessor.so
work=$build/hosts
mkdir -p "$work"

declare -A titles=(
  [two_copies]="two copies of the library run their own code"
  [full_memory]="memory that runs out costs a frame, not the process"
  [exit_handler]="the library serves exit handlers and threads that outlive main"
  [small_stack]="a stack of 64 KiB is enough"
  [lazy_host]="hosts in libraries of their own: incomplete, local, none"
  [locale]="a locale with a decimal comma changes nothing"
)
flags=(-std=c11 -Wall -Wextra -Werror -O2 -D_GNU_SOURCE -I../../include -pthread)

# Called in a condition, so every step says itself what its failure means.
compile() {
  local parts=(plugin.c host.c isolation.c) headers
  # The C library's names are bound at once: what a measured call needs is the plug-in's own.
  local link=(-rdynamic -Wl,-z,now)
  if [ "$1" = lazy_host ]; then
    parts=(isolation.c)
    cc "${flags[@]}" -shared -fPIC host.c -o "$work/libhost.so" || return
    cc "${flags[@]}" -shared -fPIC -Dzv_frameset_push_frame=another_name host.c -o "$work/libhost_lacking.so" || return
  fi
  cc "${flags[@]}" "$1.c" "${parts[@]}" "${link[@]}" -o "$work/$1" || return
  headers=$(readelf --dynamic --wide "$work/$1") || return
  ! grep -E 'NEEDED.*(stdc|libc)\+\+' <<<"$headers" || { echo "$1 links a C++ run-time"; return 1; }
}

arguments() {
  case $1 in
    two_copies)
      cp "$plugin" "$work/libcopy.so"
      echo "$work/libcopy.so"
      ;;
    lazy_host) echo "$work/libhost.so $work/libhost_lacking.so" ;;
    locale)
      [ -d "$work/locales/de_DE.UTF-8" ] || { mkdir -p "$work/locales" && localedef -i de_DE -f UTF-8 "$work/locales/de_DE.UTF-8" >&2; }
      echo de_DE.UTF-8
      ;;
  esac
}

failed=0
for name in "${@:2}" $([ $# -gt 1 ] || printf '%s\n' "${!titles[@]}" | sort); do
  log=$work/$name.log
  # shellcheck disable=SC2046 # words without blanks
  if compile "$name" >"$log" 2>&1 && LOCPATH=$work/locales "$work/$name" "$plugin" $(arguments "$name") >>"$log" 2>&1; then
    echo "passed: ${titles[$name]}"
  else
    tail -n 100 "$log"
    echo "FAILED: ${titles[$name]}"
    failed=1
  fi
done
exit $failed
