# shellcheck shell=bash
# What is installed and built.

jobs=$(nproc)

as_root() { if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi; }

# install PACKAGE...: Debian packages that are not there yet.
install() {
  local missing=() package
  for package in "$@"; do
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return
  echo "installing ${missing[*]}"
  as_root apt-get update -qq
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

install_build() {
  install git g++ cmake ninja-build pkg-config libcli11-dev libcpp-httplib-dev libdeflate-dev libpng-dev libtbb-dev libtiff-dev nlohmann-json3-dev
}

# build PRESET OPTION...: configures as CMakePresets.json says, into build/PRESET, and builds all or the target in $target.
build() {
  local directory=build/$1
  cmake --preset "$@" >/dev/null || return 1
  cmake --build "$directory" --parallel "$jobs" ${target:+--target $target} >"$directory/build.log" 2>&1 || { cat "$directory/build.log"; return 1; }
}

# A newer compiler than the one the project is tested with may warn of something new; who only uses it is not stopped by that.
build_for_use() { build "$@" -DBUILD_TESTING=OFF -DFILTERPROCESSOR_WERROR=OFF; }
