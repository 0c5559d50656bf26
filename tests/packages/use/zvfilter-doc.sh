test -s /usr/share/doc/zvfilter-doc/README.md.gz || test -s /usr/share/doc/zvfilter-doc/README.md
ls /usr/share/doc/zvfilter-doc/docs/gstreamer.md* /usr/share/doc/zvfilter-doc/gstreamer.md* /usr/share/doc/zvfilter-doc/html/index.html 2>/dev/null | grep -q .
test -s /usr/share/doc/zvfilter-doc/examples/filter_frame.c
