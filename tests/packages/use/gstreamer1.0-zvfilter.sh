#!/usr/bin/env bash
# needs: gstreamer1.0-tools gstreamer1.0-plugins-base gstreamer1.0-plugins-good
export GST_REGISTRY=$PWD/registry
gst-inspect-1.0 zvspatialadvancedfilter | grep 'Range: *0.1 - *1'
gst-launch-1.0 -q videotestsrc num-buffers=3 ! video/x-raw,format=GRAY16_LE,width=33,height=20 ! tee name=t \
  t. ! queue ! zvdepthresize scale=2 ! filesink location=large.raw t. ! queue ! filesink location=small.raw
[ "$(stat -c %s large.raw)" -eq $((3 * 66 * 40 * 2)) ]
[ "$(stat -c %s small.raw)" -eq $((3 * 68 * 20)) ]
