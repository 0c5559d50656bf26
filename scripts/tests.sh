# shellcheck shell=bash
# The stages for the plug-in, the tool, its pages and the elements.

test_release() {
  stage "tests, release build"
  install_build
  install libgtest-dev
  if build release; then
    run_tests release
    check "memory stays flat over 10000 frames a filter" build/release/bin/soak 10000
  else
    failed=$((failed + 1))
  fi
}

# The vector levels of x86-64 that this machine may lack: AVX-512 over AVX2, in any case, so that the emulation stays sound;
# AVX2, where it is missing, in an emulated processor.
test_emulated() {
  stage "the level avx512 under emulation"
  if [ "$(uname -m)" != x86_64 ]; then
    echo "skipped: this machine compiles no levels of x86-64" && skipped=$((skipped + 1))
    return
  fi
  install libsimde-dev binutils
  target=emulated_avx512 build release -DFILTERPROCESSOR_EMULATE=avx512 || { failed=$((failed + 1)); return; }
  local bin=build/release/bin processor=()
  if grep -q '^this machine lacks avx2' build/release/test_kernels.log; then
    install qemu-user
    processor=(qemu-x86_64 -cpu max)
    run_program build/release/emulated_avx2.log "${processor[@]}" $bin/test_kernels '--gtest_filter=*/avx2'
  fi
  check "the emulation has no instruction of AVX-512" sh -c "! objdump -d $bin/emulated_avx512 | grep -q zmm"
  run_program build/release/emulated_avx512.log "${processor[@]}" $bin/emulated_avx512 '--gtest_filter=*/avx512'
}

test_hosts() {
  stage "hosts in plain C, and what each layer sees"
  install gcc binutils locales
  local host
  for host in tests/hosts/*.c; do
    host=$(basename "$host" .c)
    case $host in host | plugin | isolation) continue ;; esac
    check "host $host" tests/hosts/run.sh build/release "$host"
  done
  check "no layer sees those above it" tests/library/layers.sh build/release
  install pkg-config
  check "one chain file gives the same bytes everywhere" tests/chains/agree.sh build/release
  check "libzvfilter among strangers, and the examples in C and C++" tests/zvfilter/strangers.sh build/release
  install dpkg-dev
  check "debian/ has the library's names, its version and a use of each package" tests/packages/declared.sh build/release
}

# install_browser: what the browser tests need. A Node.js that is there already may come with its own npm.
install_browser() {
  { command -v node && command -v npm; } >/dev/null || install nodejs npm
  install chromium
  (cd web && npm ci --ignore-scripts --no-audit --no-fund >/dev/null)
}

# The pages that zvfilter writes and serves, as people see them.
test_browser() {
  stage "reports and the tuner in a browser"
  local log=build/release/test_browser.log status=0 ok bad
  if ! { install_browser && target=zvfilter build release; }; then failed=$((failed + 1)); return; fi
  ZVFILTER=$PWD/build/release/bin/zvfilter SCREENSHOTS=$PWD/build/release/screens \
    node --test --test-concurrency=1 --test-reporter=tap tests/report/ tests/tuner/ bench/tuner/speed.mjs >"$log" 2>&1 || status=$?
  ok=$(sed -n 's/^# pass //p' "$log")
  bad=$(sed -n 's/^# fail //p' "$log")
  ok=${ok:-0} bad=${bad:-0}
  if [ "$bad" -eq 0 ] && { [ "$status" -ne 0 ] || [ "$ok" -eq 0 ]; }; then bad=1; fi
  [ "$bad" -eq 0 ] || tail -n 200 "$log"
  echo "test_browser: $ok passed, $bad failed"
  sed -n 's/^# \([0-9]*x[0-9]*[:,].*\)/    \1/p' "$log"
  passed=$((passed + ok)) failed=$((failed + bad))
}

test_arm64() {
  stage "tests on 64-bit Arm under emulation"
  install g++-aarch64-linux-gnu qemu-user googletest ninja-build cmake git nlohmann-json3-dev
  if build arm64; then
    run_tests arm64 qemu-aarch64 -L /usr/aarch64-linux-gnu
  else
    failed=$((failed + 1))
  fi
}

test_library() {
  stage "the library alone: exported and undefined names, installation"
  install binutils pkg-config
  if build library; then
    check "exported names are those of tests/library/exported_names.txt" tests/library/exported_names.sh build/library
    check "undefined names are the host's and the runtime's" tests/library/undefined_names.sh build/library
    check "vector kernels keep their code to themselves" tests/library/level_symbols.sh build/library
    check "the library and the tool are hardened" tests/library/hardened.sh build/release
    check "an installed copy serves a host in C" tests/library/installed.sh build/library
  else
    failed=$((failed + 1))
  fi
}

test_gstreamer() {
  stage "GStreamer: the elements in a harness, the commands of docs/gstreamer.md"
  install_build
  install libgtest-dev libgstreamer1.0-dev libgstreamer-plugins-base1.0-dev gstreamer1.0-plugins-base gstreamer1.0-plugins-good \
    gstreamer1.0-tools pkg-config
  local plugins=$PWD/build/release/lib/gstreamer-1.0 registry=$PWD/build/release/gstreamer.registry
  if target="zvfilter gstzvfilter test_gstreamer" build release -DFILTERPROCESSOR_GSTREAMER=ON; then
    GST_PLUGIN_PATH=$plugins GST_REGISTRY=$registry run_program build/release/test_gstreamer.log build/release/tests/gstreamer/test_gstreamer
    check "the recipes of docs/gstreamer.md keep every bit, and leave nothing" tests/gstreamer/recipes.sh build/release
  else
    failed=$((failed + 1))
  fi
}

sources() { git ls-files '*.h' '*.cpp' '*.c'; }

test_format() {
  stage "layout"
  install clang-format-14
  check "clang-format changes nothing" sh -c 'git ls-files "*.h" "*.cpp" "*.c" | xargs clang-format-14 --dry-run -Werror'
}
