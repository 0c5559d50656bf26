#!/usr/bin/env bash
# Sends a sequence of the virtual camera through the filters and says where the pictures are.
# Use: tool/demo.sh ZVFILTER FOLDER
set -euo pipefail
if [ $# -ne 2 ]; then
  echo "use: $0 ZVFILTER FOLDER" >&2
  exit 2
fi
tool=$1 folder=$2 frames=30

echo "A virtual stereo camera, $frames frames of 640x400: disparity becomes depth, speckles go, space and time"
echo "are smoothed, holes are filled. The true depth is known, so each step shows what it does to the error."
echo
"$tool" run -f DisparityTransform: -f NoiseRemovalFilter:min_diff=64 -f SpatialAdvancedFilter: \
  -f TemporalFilter: -f HoleFillingFilter:hole_filling_mode=1 \
  "camera:frames=$frames,size=640x400" -o "$folder" --preview
echo
echo "Pictures: disparity on the left, filtered depth on the right, near in blue and far in red, each in its own range:"
echo "  $folder/disparity_0000_preview.png to $folder/disparity_$(printf %04d $((frames - 1)))_preview.png"
echo "The depth images themselves (16 bits, millimetres) lie beside them without \"_preview\"."
