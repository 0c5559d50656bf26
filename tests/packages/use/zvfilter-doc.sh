#!/usr/bin/env bash
# The pages that the first one links are there, and so is what a page of the site shows.
cd /usr/share/doc/zvfilter
links=$(grep -oE '\]\(docs/[a-z_]+\.(md|png)' README.md | sed 's/.*(//' | sort -u)
[ "$(wc -l <<<"$links")" -gt 5 ]
for link in $links; do test -s "$link"; done
test -s examples/filter_frame.c
for file in $(grep -oE '(src|href)="[^"#:?]+["#?]' html/filters/HoleFillingFilter.html | sed 's/.*="//; s/.$//' | sort -u); do
  test -s "html/filters/$file"
done
