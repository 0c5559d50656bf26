#!/usr/bin/env bash
# Each layer sees the headers of the layers below it, and an include of any other does not compile.
# Use: layers.sh BUILD, a build of everything
set -euo pipefail
build=$(cd "$1" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
status=0

# try LAYER SOURCE ALLOWED FORBIDDEN: compiles one include each as the layer's SOURCE is compiled, but elsewhere.
try() {
  local command object
  object=$(ninja -C "$build" -t targets all | sed -n "s|^\([^:]*/filterprocessor_$1\.dir/.*/\?$2\.o\): .*|\1|p" | head -1)
  [ -n "$object" ] || { echo "$1: no object of $2 in $build"; status=1; return; }
  command=$(ninja -C "$build" -t commands "$object" | tail -1 | grep -oE -- '-(I|isystem |D|std=)[^ ]+' | tr '\n' ' ')
  echo "#include \"$3\"" >"$work/allowed.cpp"
  echo "#include \"$4\"" >"$work/forbidden.cpp"
  (cd "$work" && eval "c++ -fsyntax-only $command allowed.cpp") || { echo "$1 does not see $3"; status=1; }
  if (cd "$work" && eval "c++ -fsyntax-only $command forbidden.cpp") 2>"$work/log"; then
    echo "$1 sees $4"
    status=1
  elif ! grep -q "$4: No such file" "$work/log"; then
    echo "$1: $4 fails for another reason:"
    cat "$work/log"
    status=1
  fi
}

try kernels kernel_set.cpp kernels/kernel_set.h framework/errors.h
try kernels kernel_set.cpp common/saturate.h filters/depth_converter.h
try kernels_avx2 temporal_vector.cpp kernels/temporal/temporal.h framework/host_calls.h
try exports temporal.cpp kernels/kernel_set.h framework/errors.h
try framework errors.cpp framework/errors.h framework/registry/filter_factory.h
try framework errors.cpp framework/frame_process.h kernels/kernel_set.h
try filters temporal_filter.cpp filters/temporal_filter.h framework/registry/filter_factory.h
try registry plugin.cpp framework/registry/filter_factory.h kit/plugin/plugin.h
try kit_common text.cpp kit/common/text.h kit/image/image.h
try kit_image pgm.cpp kit/image/image.h kit/frame/frame.h
try kit_frame pixel_reader.cpp kit/frame/pixel_reader.h kit/plugin/plugin.h
try kit_measure accuracy.cpp kit/measure/accuracy.h kit/chain/pipeline.h
try kit_plugin plugin.cpp kit/plugin/plugin.h kit/chain/pipeline.h
try kit_texts filter_texts.cpp kit/texts/presets.h kit/json/json.h
try kit_filter filter_library.cpp kit/filter/filter_library.h kit/chain/chain.h
try kit_chain pipeline.cpp kit/chain/pipeline.h kernels/kernel_set.h
try kit_pipeline sequence.cpp kit/chain/pipeline.h kit/plugin/plugin.h
try kit_advise trial.cpp kit/chain/pipeline.h kit/pipeline/workers.h
try kit_report report.cpp kit/measure/accuracy.h kit/chain/pipeline.h
try kit_tuner session.cpp kit/pipeline/sequence.h kit/report/report.h
exit $status
