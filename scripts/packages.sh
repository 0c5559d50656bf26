# shellcheck shell=bash
# Debian packages.

architecture() { dpkg --print-architecture; }

# export_sources FOLDER: the files of the project without its history.
export_sources() {
  mkdir -p "$1"
  if git rev-parse --git-dir >/dev/null 2>&1; then git ls-files -z; else find . -type f -not -path './build/*' -not -path './out/*' -print0; fi |
    tar -c --null --files-from=- | tar -x -C "$1"
}

# logged LOG COMMAND...: the end of the log if the command fails.
logged() { "${@:2}" >"$1" 2>&1 || { tail -n 100 "$1"; return 1; }; }

# collect WORK OUTPUT: what dpkg-buildpackage leaves beside the sources.
collect() {
  mkdir -p "$2"
  find "$1" -maxdepth 1 -type f \( -name '*.deb' -o -name '*.dsc' -o -name '*.tar.*' -o -name '*.changes' -o -name '*.buildinfo' \) -exec mv -t "$2" {} +
}

# build_packages SOURCES OUTPUT: in a folder of copied sources. The bytes of the packages do not depend on where that is.
build_packages() {
  install git build-essential ccache debhelper lintian
  dpkg-checkbuilddeps 2>/dev/null || {
    echo "installing what debian/control names"
    as_root apt-get update -qq
    as_root env DEBIAN_FRONTEND=noninteractive apt-get build-dep -y -qq --no-install-recommends ./ >/dev/null
  }
  # The build has a home folder of its own. A cache that makes paths relative would show in the debugging symbols.
  local cache log
  cache=$(ccache --get-config cache_dir) log=$(realpath "$1/..")/build.log
  (cd "$1" &&
    logged "$log" env -u CMAKE_C_COMPILER_LAUNCHER -u CMAKE_CXX_COMPILER_LAUNCHER CCACHE_BASEDIR= CCACHE_DIR="$cache" \
      PATH="/usr/lib/ccache:$PATH" DEB_BUILD_OPTIONS="parallel=$jobs" dpkg-buildpackage -us -uc) || return 1
  collect "$1/.." "$2"
}

# cross_build_packages ARCHITECTURE WORK OUTPUT: in a Debian of its own, since a machine has one processor's GStreamer headers.
cross_build_packages() {
  install git debootstrap
  local root=$2/root status=0
  remove_root "$root"
  rm -rf "$2" "$3"
  mkdir -p "$2"
  make_root "$root" "$(architecture)"
  export_sources "$root/build/filterprocessor"
  # shellcheck disable=SC2016 # the root's shell expands these
  logged "$2/build.log" in_root "$root" bash -euc '
    dpkg --add-architecture "$1"
    apt-get update -qq
    apt-get install -y -qq build-essential "crossbuild-essential-$1"
    cd /build/filterprocessor
    apt-get build-dep -y -qq --arch-only --host-architecture "$1" --build-profiles cross,nocheck ./
    DEB_BUILD_OPTIONS="parallel=$2 nocheck" dpkg-buildpackage -us -uc --host-arch "$1" --build-profiles=cross,nocheck -B' bash "$1" "$jobs" || status=1
  if [ "$status" -eq 0 ]; then collect "$root/build" "$3"; fi
  remove_root "$root"
  return "$status"
}

# same_packages: made from the source archive, without git and without what an earlier build left, they have the same bytes.
same_packages() {
  local again package status=0
  again=$(mktemp -d)
  mkdir "$again/longer"
  (cd "$again/longer" && dpkg-source -x "$OLDPWD"/out/packages/*.dsc sources >/dev/null) &&
    CCACHE_DISABLE=1 build_packages "$again/longer/sources" "$again/out" || status=1
  for package in out/packages/*.deb; do cmp "$package" "$again/out/$(basename "$package")" || status=1; done
  rm -rf "$again"
  return "$status"
}

# make_packages [ARCHITECTURE]
make_packages() {
  local host=${1:-$(architecture)} output=out/packages
  if [ "$host" = "$(architecture)" ]; then
    rm -rf build/package "$output"
    export_sources build/package/filterprocessor
    build_packages build/package/filterprocessor "$output"
  else
    output+=-$host
    cross_build_packages "$host" "build/package-$host" "$output"
  fi
  lintian --fail-on error,warning "$output"/*.changes
  ls -l "$output"/*.deb
}

# test_packages [ARCHITECTURE]
test_packages() {
  local host=${1:-$(architecture)} output=out/packages
  [ "$host" = "$(architecture)" ] || output+=-$host
  ls "$output"/*.deb >/dev/null 2>&1 || make_packages "$host"
  install debootstrap
  [ "$host" = "$(architecture)" ] || install qemu-user-static
  check "each package installs, works, upgrades and purges" tests/packages/run.sh "$output" "$host"
  [ "$host" != "$(architecture)" ] || check "the source archive gives the same bytes in another folder" same_packages
}
