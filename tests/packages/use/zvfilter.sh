#!/usr/bin/env bash
# needs: man-db bash-completion zsh
# Frames of the virtual camera go through a chain to PNG files and a page.
zvfilter camera --frames 2 --size 160x100 -o recorded
zvfilter run -f DisparityTransform: -f HoleFillingFilter:hole_filling_mode=1 --truth recorded/truth recorded --report page.html -o filtered | grep HoleFillingFilter
[ "$(find filtered -name '*.png' | wc -l)" -eq 2 ]
grep -q '</html>' page.html
zvfilter run --preset still-scene filtered --baseline 50 --fx 112 -o calm >/dev/null
for page in zvfilter zvfilter-run zvfilter-chain-convert; do test -e "/usr/share/man/man1/$page.1.gz"; done
# completions LINE: what Tab offers at its end.
completions() {
  bash -c '
    source /usr/share/bash-completion/bash_completion
    source /usr/share/bash-completion/completions/zvfilter
    compopt() { :; }
    COMP_LINE=$0 COMP_POINT=${#0}
    read -ra COMP_WORDS <<<"${0//:/ : }"
    [[ $0 != *" " ]] || COMP_WORDS+=("")
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    _zvfilter
    printf "%s\n" "${COMPREPLY[@]}"' "$1"
}
completions "zvfilter " | grep -x chain
completions "zvfilter chain " | grep -x convert
completions "zvfilter run --preset s" | grep -x still-scene
completions "zvfilter run -f Hole" | grep HoleFillingFilter
completions "zvfilter run -f TemporalFilter:w" | grep 'weight='
zsh -n /usr/share/zsh/vendor-completions/_zvfilter
