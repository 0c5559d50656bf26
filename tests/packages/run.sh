#!/usr/bin/env bash
# Each package in an empty Debian 12: installed, used, upgraded and purged. As root; needs debootstrap and the network.
# Use: run.sh PACKAGES [ROOT.tar], packages as ./dev package makes them and, to save the time, a root that debootstrap made
set -euo pipefail
packages=$(realpath "$1")
here=$(dirname "$(realpath "$0")")
work=$(mktemp -d)
root=$work/root
clean_up() {
  umount "$root/proc" 2>/dev/null || true
  rm -rf --one-file-system "$work"
}
trap clean_up EXIT

if [ $# -gt 1 ]; then
  mkdir "$root"
  tar -xf "$2" -C "$root"
else
  debootstrap --variant=minbase bookworm "$root" http://deb.debian.org/debian >"$work/log" || { tail "$work/log"; exit 1; }
fi
mount -t proc proc "$root/proc"
cp /etc/resolv.conf "$root/etc/"

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
chroot "$root" apt-get update -qq
status=0
for test in "$here"/use/*.sh; do
  name=$(basename "$test" .sh)
  if chroot "$root" /tests/one_package.sh "$name" >"$work/log" 2>&1; then
    echo "passed: $name"
  else
    echo "FAILED: $name"
    tail -n 40 "$work/log"
    status=1
  fi
done
exit "$status"
