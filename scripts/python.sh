# shellcheck shell=bash
# The stage for the Python module.

# The module as its users have it: a wheel, installed in a clean environment, tested and shown from another folder.
test_python() {
  stage "the Python module: a wheel in a clean environment, types, examples"
  install_build
  install pybind11-dev python3-dev python3-numpy python3-setuptools python3-wheel python3-build python3-venv python3-pytest \
    python3-jsonschema python3-distributed python3-matplotlib mypy binutils
  target=zvfilter build release && target=zvfilter_python build release -DFILTERPROCESSOR_PYTHON=ON -DPython_EXECUTABLE=/usr/bin/python3 ||
    { failed=$((failed + 1)); return; }
  local root=$PWD work log status=0 ok bad skip example
  work=$(mktemp -d)
  log=$work/log
  mkdir "$work/elsewhere"
  rm -rf python/build
  if ! { ZVFILTER_BUILD=$root/build/release /usr/bin/python3 -m build --no-isolation --wheel --outdir "$work" python &&
    /usr/bin/python3 -m venv --system-site-packages "$work/venv" &&
    "$work/venv/bin/pip" install --no-index --no-deps "$work"/zvfilter-*.whl; } >"$log" 2>&1; then
    cat "$log"
    failed=$((failed + 1))
    return
  fi
  (cd "$work/elsewhere" && ZVFILTER_TOOL=$root/build/release/bin/zvfilter \
    "$work/venv/bin/python" -m pytest -q -p no:cacheprovider "$root/python/tests") >"$log" 2>&1 || status=$?
  # count WORD: how many the last line says so.
  count() { tail -n 1 "$log" | grep -o "[0-9]* $1" | grep -o '^[0-9]*' || echo 0; }
  ok=$(count passed) bad=$(($(count failed) + $(count error))) skip=$(count skipped)
  if [ "$status" -ne 0 ] && [ "$bad" -eq 0 ]; then bad=1; fi
  [ "$bad" -eq 0 ] || tail -n 200 "$log"
  echo "python: $ok passed, $bad failed, $skip skipped"
  passed=$((passed + ok)) failed=$((failed + bad)) skipped=$((skipped + skip))
  check "one chain file gives the same bytes in Python" tests/chains/agree.sh build/release python "$work/venv/bin/python tests/chains/run_chain.py"
  for example in first_steps pictures batch; do
    check "example python_$example" sh -c "cd '$work/elsewhere' && '$work/venv/bin/python' '$root/examples/python_$example.py' >/dev/null"
  done
  rm -rf "$work"
}
