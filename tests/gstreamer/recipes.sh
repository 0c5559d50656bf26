#!/usr/bin/env bash
# The commands of docs/gstreamer.md, run as they stand, and what they make beside what the tool makes; what pipelines refuse; and
# whether anything is left of them. Use: recipes.sh BUILD
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
filter "HoleFillingFilter:hole_filling_mode=1" frames expected.raw
different expected.raw depth.raw
cmp filled.raw expected.raw
filter DepthResize: filtered from_png.raw
cmp from_png.raw expected.raw
filter chain.json frames expected.raw
different expected.raw depth.raw
cmp calm.raw expected.raw
filter "HoleFillingFilter:hole_filling_mode=1; TemporalFilter:weight=0.3" frames expected.raw
cmp steady.raw expected.raw
filter DepthResize:scale=0.5 frames expected.raw
cmp half.raw expected.raw
different mixed.raw half.raw
filter "HoleFillingFilter:hole_filling_mode=1" small expected.raw
cmp odd_filled.raw expected.raw
# The byte after a PNG's size is its bits a sample.
bits() { od -An -j 24 -N 1 -t u1 "$1" | tr -d ' '; }
[ "$(bits eight_bits.png)" = 8 ] && [ "$(bits filtered/frame_0000.png)" = 16 ]

"$build/tests/gstreamer/test_gstreamer" >log 2>&1 || { cat log; exit 1; }
nothing_left

# What is refused once frames flow is in test_gstreamer: gst-launch-1.0 may wait for ever after such an error, of any element.
# refused TEXT ELEMENT...: a pipeline that ends with this error.
refused() {
  local text=$1
  shift
  if gst-launch-1.0 filesrc location=depth.raw ! rawvideoparse format=gray16-le width=640 height=400 ! "$@" ! fakesink >log 2>&1; then
    echo "not refused: $*"
    exit 1
  fi
  grep -qaF -- "$text" log || { cat log; exit 1; }
  nothing_left
}
refused "HoleFillingFilter" zvchain chain=HoleFilingFilter:
refused "chain=" zvchain
refused "could not link" identity ! video/x-raw,format=GRAY16_BE ! zvholefillingfilter
