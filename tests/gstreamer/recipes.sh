#!/usr/bin/env bash
# The commands of docs/gstreamer.md, run as they stand, and what they make beside what the tool makes; and whether anything is left
# of them. Use: recipes.sh BUILD
set -euo pipefail
build=$(realpath "$1")
cd "$(dirname "$0")/../.."
page=$PWD/docs/gstreamer.md chain=$PWD/presets/moving-camera.json
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export GST_PLUGIN_PATH=$build/lib/gstreamer-1.0 GST_REGISTRY=$work/registry
export GST_TRACERS=leaks GST_DEBUG=GST_TRACER:7 GST_DEBUG_NO_COLOR=1
awk '/^```sh$/ {on = 1; next} /^```$/ {on = 0} on' "$page" >"$work/commands.sh"
cd "$work"

# filter STEPS INPUT OUTPUT: the same by the tool, as one raw file.
filter() {
  mkdir made
  "$build/bin/zvfilter" run --chain "$1" --baseline 50 --fx 448 --format raw "$2" -o made >/dev/null 2>&1
  cat made/*.raw >"$3"
  rm -r made
}
# same STEPS INPUT MADE: what a command made is what the tool makes.
same() {
  filter "$1" "$2" expected.raw
  cmp "$3" expected.raw
}
nothing_left() { ! grep -aE 'object-alive, type-name=\(string\)[A-Za-z]' log || { echo "objects are left"; exit 1; }; }
different() { ! cmp -s "$1" "$2" || { echo "$1 is as it was"; exit 1; }; }

"$build/bin/zvfilter" run -f DisparityTransform: camera:frames=4 -o disparity >/dev/null
mkdir frames
for file in disparity/*.png; do mv "$file" "frames/frame_${file##*_}"; done
"$build/bin/zvfilter" run -f DepthResize:scale=0.5,ex_left=1,ex_top=1,dst_width=321,dst_height=201 frames -o small >/dev/null
filter DepthResize: frames depth.raw
filter DepthResize: small odd.raw
cp "$chain" chain.json

bash -e -o pipefail commands.sh >log 2>&1 || { cat log; exit 1; }
nothing_left
same HoleFillingFilter:hole_filling_mode=1 frames filled.raw
different filled.raw depth.raw
same DepthResize: filtered filled.raw
same chain.json frames calm.raw
different calm.raw depth.raw
same "HoleFillingFilter:hole_filling_mode=1; TemporalFilter:weight=0.3" frames steady.raw
same DepthResize:scale=0.5 frames half.raw
different mixed.raw half.raw
same HoleFillingFilter:hole_filling_mode=1 small odd_filled.raw
# The byte after a PNG's size is its bits a sample.
bits() { od -An -j 24 -N 1 -t u1 "$1" | tr -d ' '; }
[ "$(bits eight_bits.png)" = 8 ] && [ "$(bits filtered/frame_0000.png)" = 16 ]

"$build/tests/gstreamer/test_gstreamer" >log 2>&1 || { cat log; exit 1; }
nothing_left
