# shellcheck shell=bash
# The stages under sanitizers: tests, threads, fuzz targets.

# One build for the tests and the fuzz targets: the vector kernels take long to compile with sanitizers.
build_sanitized() {
  install clang-14 libclang-rt-14-dev libgtest-dev || return 1
  build sanitized
}

test_sanitized() {
  stage "tests under the address and undefined-behaviour sanitizers (clang)"
  # Memory that runs out is for the filters to answer.
  if build_sanitized; then ASAN_OPTIONS=allocator_may_return_null=1 run_tests sanitized; else failed=$((failed + 1)); fi
}

test_threads() {
  stage "threads, under the thread sanitizer (clang)"
  install clang-14 libclang-rt-14-dev libgtest-dev nlohmann-json3-dev
  if target="test_threads test_zvfilter" build threads; then
    run_tests threads
  else
    failed=$((failed + 1))
  fi
}

# fuzz_target PROGRAM SECONDS FINDS: runs the seeds and earlier finds, then looks for new ones.
fuzz_target() {
  local name log
  name=$(basename "$1")
  log=build/fuzz/$name.log
  local inputs=("$3/$name")
  mkdir -p "${inputs[0]}"
  [ -d "fuzz/seeds/$name" ] && inputs+=("fuzz/seeds/$name")
  # No small file makes a reader ask for much memory.
  local limit=()
  [ "$name" != fuzz_readers ] || limit=(-malloc_limit_mb=256)
  # Inputs may grow at once: their first bytes are sizes, and what comes late would always be 0.
  if "$1" "${limit[@]}" -max_total_time="$2" -len_control=10 -print_final_stats=1 -artifact_prefix="build/fuzz/crashes/$name-" "${inputs[@]}" >"$log" 2>&1
  then
    echo "$name: $(sed -n 's/^stat::number_of_executed_units: *//p' "$log") runs"
  else
    tail -n 60 "$log"
    sed -n "s/.*Test unit written to /the input is kept: $name /p" "$log"
    return 1
  fi
}

# fuzz_all SECONDS FINDS: every target so long, as many at a time as there are processors.
fuzz_all() {
  local programs=(build/sanitized/bin/fuzz_*) i n
  mkdir -p build/fuzz/crashes
  for ((i = 0; i < ${#programs[@]}; i += jobs)); do
    local batch=("${programs[@]:i:jobs}") runs=()
    for n in "${!batch[@]}"; do fuzz_target "${batch[n]}" "$1" "$2" & runs+=($!); done
    for n in "${!batch[@]}"; do check "$(basename "${batch[n]}") finds nothing" wait "${runs[n]}"; done
  done
}

test_fuzz() {
  stage "fuzz targets: the seeds and a few seconds each"
  rm -rf build/fuzz/brief
  if build_sanitized; then fuzz_all 3 build/fuzz/brief; else failed=$((failed + 1)); fi
}
