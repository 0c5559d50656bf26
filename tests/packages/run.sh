#!/usr/bin/env bash
# Each package in an empty Debian 12: installed, used, upgraded and purged. As root; needs debootstrap and the network.
# Use: run.sh PACKAGES ARCHITECTURE, packages as ./dev package makes them; of another processor: needs qemu-user-static
set -euo pipefail
packages=$(realpath "$1")
here=$(dirname "$(realpath "$0")")
# shellcheck source=scripts/roots.sh
. "$here/../../scripts/roots.sh"
work=$(mktemp -d)
root=$work/root
clean_up() {
  remove_root "$root"
  rm -rf "$work"
}
trap clean_up EXIT

make_root "$root" "$2"

# The same packages with a higher version, for the upgrade.
mkdir "$root/packages" "$root/newer"
find "$packages" -name '*.deb' -not -name '*-dbgsym_*' -exec cp -t "$root/packages" {} +
for file in "$root"/packages/*.deb; do
  rm -rf "$work/unpacked"
  dpkg-deb -R "$file" "$work/unpacked"
  version=$(dpkg-deb -f "$file" Version)
  sed -i "/^\(Version\|Depends\)/s/\b${version//./\\.}\b/$version+next/" "$work/unpacked/DEBIAN/control"
  dpkg-deb --root-owner-group -b "$work/unpacked" "$root/newer" >/dev/null
done
cp -r "$here" "$root/tests"
in_root "$root" apt-get update -qq
status=0
for file in "$root"/packages/*.deb; do
  name=$(dpkg-deb -f "$file" Package)
  if in_root "$root" /tests/one_package.sh "$name" >"$work/log" 2>&1; then
    echo "passed: $name"
  else
    echo "FAILED: $name"
    tail -n 40 "$work/log"
    status=1
  fi
done
exit "$status"
