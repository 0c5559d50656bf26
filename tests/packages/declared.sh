#!/usr/bin/env bash
# What debian/ says beside the build, without building packages. Use: declared.sh BUILD
set -euo pipefail
library=$(realpath "$1")/lib/libzvfilter.so
cd "$(dirname "$0")/../.."
dpkg-source --before-build . >/dev/null # reads control and changelog
packaged=$(dpkg-parsechangelog -S Version)
built=$(sed -n 's/^project(FilterProcessor VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
[ "$packaged" = "$built" ] || { echo "debian/changelog has version $packaged, CMakeLists.txt $built"; exit 1; }
diff <(sed -n 's/^ \(zvf_[a-z_]*\)@.*/\1/p' debian/libzvfilter1.symbols) \
  <(nm -D --defined-only "$library" | sed -n 's/.* T \(zvf_[a-z_]*\).*/\1/p' | LC_ALL=C sort) ||
  { echo "debian/libzvfilter1.symbols (<) and the library (>) differ"; exit 1; }
for package in $(sed -n 's/^Package: //p' debian/control); do
  [ -e "tests/packages/use/$package.sh" ] || { echo "tests/packages/use has nothing for $package"; exit 1; }
done
