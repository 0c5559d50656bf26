#!/usr/bin/env bash
# needs: gcc g++ libc6-dev pkg-config cmake make
# One hole between samples of 900 and 700 takes the nearest of them.
cat >fill.c <<'C'
#include <stdio.h>
#include <zvfilter/zvfilter.h>
int main(void) {
  uint16_t pixels[9] = {900, 900, 900, 700, 0, 900, 900, 900, 900};
  zvf_error error;
  zvf_chain* chain = zvf_chain_parse("HoleFillingFilter:hole_filling_mode=1", &error);
  zvf_input input = zvf_input_of(3, 3);
  if (chain == NULL || zvf_chain_set_input(chain, &input, &error) != ZVF_OK ||
      zvf_chain_run(chain, pixels, 0, pixels, 0, &error) != ZVF_OK)
    return puts(error.message), 1;
  zvf_chain_destroy(chain);
  return printf("%d\n", pixels[4]) > 0 ? 0 : 1;
}
C
# shellcheck disable=SC2046 # words without blanks
cc fill.c -o fill $(pkg-config --cflags --libs zvfilter)
[ "$(./fill)" = 700 ]
cat >CMakeLists.txt <<'C'
cmake_minimum_required(VERSION 3.25)
project(fill LANGUAGES C CXX)
find_package(zvfilter 1 REQUIRED)
add_executable(fill_by_cmake fill.c)
target_link_libraries(fill_by_cmake PRIVATE zvfilter::zvfilter)
C
cmake -B build . >/dev/null && cmake --build build
[ "$(build/fill_by_cmake)" = 700 ]
printf '#include <filterprocessor/filter_processor.h>\n#include <filterprocessor/host.h>\n' | cc -fsyntax-only -x c -
