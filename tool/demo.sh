#!/usr/bin/env bash
# Sends a sequence of the virtual camera through the filters and says where the pictures are.
# Use: tool/demo.sh ZVFILTER FOLDER
set -euo pipefail
if [ $# -ne 2 ]; then
  echo "use: $0 ZVFILTER FOLDER" >&2
  exit 2
fi
tool=$1 folder=$2 frames=30

echo "A virtual stereo camera, $frames frames of 640x400: disparity becomes depth, speckles and noisy edges go, space and"
echo "time are smoothed, small holes first and then the rest are filled, the image is halved. The true depth is known, so"
echo "each step but the last, which changes the size, shows what it does to the error."
echo
"$tool" run -f DisparityTransform: -f NoiseRemovalFilter:min_diff=64 -f EdgeNoiseRemovalFilter:enable_vertical_direction=1 \
  -f SpatialAdvancedFilter:radius=4 -f TemporalFilter: -f HoleFillingFilter:hole_filling_mode=2 \
  -f DepthResize:dst_width=320,dst_height=200,scale=0.5 \
  "camera:frames=$frames,size=640x400" -o "$folder" --preview --overwrite --report "$folder/report.html"
echo
echo "What each step does, to look at in a browser:"
echo "  $folder/report.html"
echo "Pictures: disparity on the left, half-size depth on the right, in colours from near to far with their legends:"
echo "  $folder/disparity_0000_preview.png to $folder/disparity_$(printf %04d $((frames - 1)))_preview.png"
echo "The depth images themselves (16 bits, millimetres) lie beside them without \"_preview\"."
echo
echo "The tool is $tool; it runs from where it is. To install it with the library:"
echo "  cmake --install $(dirname "$(dirname "$tool")") --prefix /usr/local"
echo "$tool help and $tool presets say what it can do."
