#!/usr/bin/env bash
# Converts and fills a few frames of the virtual camera and says where the pictures are.
# Use: tool/demo.sh ZVFILTER FOLDER
set -euo pipefail
if [ $# -ne 2 ]; then
  echo "use: $0 ZVFILTER FOLDER" >&2
  exit 2
fi
tool=$1 folder=$2 frames=5

echo "A virtual stereo camera, $frames frames of 640x400: disparity to depth, then the holes."
echo
"$tool" run -f DisparityTransform: -f HoleFillingFilter:hole_filling_mode=1 \
  "camera:frames=$frames,size=640x400" -o "$folder" --preview
echo
echo "Disparity on the left, filtered depth on the right, near in blue and far in red, each in its own range:"
for ((i = 0; i < frames; ++i)); do
  printf '  %s/disparity_%04d_preview.png\n' "$folder" "$i"
done
echo "The depth images themselves (16 bits, millimetres) lie beside them without \"_preview\"."
