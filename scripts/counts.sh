# shellcheck shell=bash
# Stages of the tests, and what they add up to.

passed=0 failed=0 skipped=0

stage() { printf '\n== %s\n' "$1"; }

# check NAME COMMAND...: one passed or failed check.
check() {
  local name=$1
  shift
  if "$@"; then echo "passed: $name"; passed=$((passed + 1)); else echo "FAILED: $name"; failed=$((failed + 1)); fi
}

# run_program LOG COMMAND...: runs a test program and adds up what it says. Levels that the machine lacks are left to
# test_emulated, and not counted as skipped.
run_program() {
  local log=$1 status=0
  shift
  "$@" >"$log" 2>&1 || status=$?
  count_program "$log" "$status"
}

# count_program LOG STATUS: adds up what a test program said.
count_program() {
  local log=$1 status=$2
  local ok bad skip lacking
  ok=$(sed -n 's/^\[  PASSED  \] \([0-9]*\) tests\?\.$/\1/p' "$log")
  bad=$(sed -n 's/^\[  FAILED  \] \([0-9]*\) tests\?, listed below:$/\1/p' "$log")
  skip=$(sed -n 's/^\[  SKIPPED \] \([0-9]*\) tests\?, listed below:$/\1/p' "$log")
  lacking=$(grep -c '^this machine lacks' "$log" || true)
  ok=${ok:-0} bad=${bad:-0} skip=$((${skip:-0} - lacking))
  # A program that ended badly without saying which test failed has failed once.
  if [ "$status" -ne 0 ] && [ "$bad" -eq 0 ]; then bad=1; fi
  if [ "$status" -eq 0 ] && [ $((ok + skip + lacking)) -eq 0 ]; then bad=1; fi
  [ "$bad" -eq 0 ] || tail -n 200 "$log"
  echo "$(basename "$log" .log): $ok passed, $bad failed, $skip skipped"
  grep '^this machine lacks' "$log" | sort | uniq -c | sed 's/^ *\([0-9]*\) \(.*\)/    \1 left to emulation: \2/' || true
  sed -n 's|^\[       OK \] Levels/.*/\([a-z0-9]*\) (.*|\1|p' "$log" | sort | uniq -c | sed 's/^ *\([0-9]*\) \(.*\)/    \1 on \2/'
  passed=$((passed + ok)) failed=$((failed + bad)) skipped=$((skipped + skip))
}

# run_tests DIRECTORY [EMULATOR...]: every test program of a build, as many at a time as there are processors.
run_tests() {
  local directory=build/$1 program log running=0
  shift
  for program in "$directory"/bin/test_*; do
    if [ "$running" -ge "$jobs" ]; then wait -n || true; else running=$((running + 1)); fi
    log=$directory/$(basename "$program").log
    { status=0; "$@" "$program" >"$log" 2>&1 || status=$?; echo "$status" >"$log.status"; } &
  done
  wait
  for program in "$directory"/bin/test_*; do
    log=$directory/$(basename "$program").log
    count_program "$log" "$(cat "$log.status")"
  done
}

total() {
  printf '\n%d passed, %d failed, %d skipped\n' "$passed" "$failed" "$skipped"
  [ "$failed" -eq 0 ]
}
