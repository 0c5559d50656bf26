# shellcheck shell=bash
# The documentation site and its stage.

# build_site [FRAMES]: the site in build/docs/html, of the project installed in build/docs/prefix.
build_site() {
  install_build
  install pybind11-dev python3-dev python3-numpy python3-matplotlib python3-pil python3-sphinx python3-myst-parser python3-breathe \
    furo doxygen
  target="zvfilter zvfilter_library zvfilter_python" build release -DFILTERPROCESSOR_PYTHON=ON -DFILTERPROCESSOR_GSTREAMER=OFF \
    -DPython_EXECUTABLE=/usr/bin/python3 &&
    rm -rf build/docs/prefix && cmake --install build/release --prefix build/docs/prefix >/dev/null &&
    PYTHONPATH=$(echo "$PWD"/build/docs/prefix/lib*/python3/dist-packages) \
      /usr/bin/python3 -B docs/make/make_site.py build/docs/prefix/bin/zvfilter build/docs "$@"
}

test_docs() {
  stage "documentation: the site, its links, the commands of its pages"
  check "the site is made without a warning" build_site
  check "links lead somewhere within the site" /usr/bin/python3 -B tests/docs/check_links.py build/docs/html
  check "pages show frames of a folder" env PYTHONPATH="$(echo "$PWD"/build/docs/prefix/lib*/python3/dist-packages):docs/make" \
    /usr/bin/python3 -B tests/docs/own_frames.py
  install gcc pkg-config
  check "an SDK for the guides" gcc -std=c11 -O2 -D_GNU_SOURCE -Iinclude -shared -fPIC tests/hosts/host.c tests/docs/sdk.c \
    -o build/docs/prefix/lib/libZelvinSDK.so
  local page
  for page in README.md docs/guides/*.md docs/reference/{chain_files,cpp_library}.md docs/{advise,batch,files,python}.md; do
    check "commands of $(basename "$page" .md)" /usr/bin/python3 -B tests/docs/run_commands.py build/docs/prefix "$page"
  done
}
