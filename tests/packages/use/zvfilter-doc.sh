#!/usr/bin/env bash
# Long pages may be compressed.
for page in README gstreamer python; do
  [ -n "$(find /usr/share/doc/zvfilter-doc -maxdepth 1 -name "$page.md*" -size +0)" ]
done
test -s /usr/share/doc/zvfilter-doc/examples/filter_frame.c
