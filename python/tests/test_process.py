"""The module among others: the tool, another host in the process, a locale with a comma, a type checker."""

import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

import numpy as np
import pytest

import zvfilter
from conftest import REPOSITORY, STEPS

PACKAGE = Path(zvfilter.__file__).parent


def run_python(code, **environment):
    done = subprocess.run([sys.executable, "-c", code], capture_output=True, text=True, env={**os.environ, **environment})
    assert done.returncode == 0, done.stderr
    return done.stdout + done.stderr


def test_the_tool_makes_the_same_pixels(tool, tmp_path, chain, camera):
    (tmp_path / "in").mkdir()
    for number, frame in enumerate(camera):
        zvfilter.write(tmp_path / "in" / f"f_{number}.png", frame.disparity)
    subprocess.run([tool, "camera", "--frames", "1", "--size", "320x200", "--seed", "7", "-o", tmp_path / "camera"], check=True,
                   stdout=subprocess.DEVNULL)
    filters = [text for step in STEPS for text in ("-f", step.split("=", 1)[1] if step.startswith("smooth=") else step)]
    filters[-1] = "DepthResize:scale=0.5,dst_width=160,dst_height=100"
    subprocess.run([tool, "run", *filters, "--camera", tmp_path / "camera/camera.json", tmp_path / "in", "-o", tmp_path / "out"],
                   check=True, stdout=subprocess.DEVNULL)
    for number, made in enumerate(chain.stream(frame.disparity for frame in camera)):
        assert np.array_equal(made, zvfilter.read(tmp_path / f"out/f_{number}.png"))


FILTER_SOMETHING = """
import zvfilter
camera = zvfilter.VirtualCamera((128, 96), frames=2)
chain = zvfilter.Chain(["DisparityTransform:", "NoiseRemovalFilter:", "SpatialAdvancedFilter:alpha=0.25", "DepthResize:scale=0.5"],
                       input=camera.input)
made = list(chain.stream(frame.disparity for frame in camera))
"""


def test_a_host_loaded_before_is_never_asked(tmp_path):
    compiler = shutil.which("cc")
    if compiler is None:
        pytest.skip("there is no compiler for another host")
    names = set(re.findall(r"\b(zv_[a-z0-9_]+)\(", (REPOSITORY / "include/filterprocessor/host.h").read_text()))
    own = {"zv_get_filter_count", "zv_get_filter_name", "zv_create_filter", "zv_priv_filter_process", "zvf_chain_run_frame",
           "depth_api_hole_filling_filter"}
    assert len(names) > 20
    source = tmp_path / "host.c"
    source.write_text("#include <stdlib.h>\n" + "".join(f"void {name}(void) {{ abort(); }}\n" for name in sorted(names | own)))
    subprocess.run([compiler, "-shared", "-fPIC", source, "-o", tmp_path / "host.so"], check=True)
    plain = FILTER_SOMETHING + "print(sum(int(frame.sum()) for frame in made))"
    assert run_python(plain, LD_PRELOAD=str(tmp_path / "host.so")) == run_python(plain) != "0\n"


def test_the_extension_shows_one_name():
    if shutil.which("nm") is None:
        pytest.skip("there is no nm")
    [extension] = PACKAGE.glob("_zvfilter*.so")
    shown = subprocess.run(["nm", "--dynamic", "--defined-only", extension], check=True, capture_output=True, text=True).stdout
    assert [line.split()[-1] for line in shown.splitlines()] == ["PyInit__zvfilter"]
    assert not re.search(r" U zv", subprocess.run(["nm", "--dynamic", extension], capture_output=True, text=True).stdout)


def test_numbers_are_the_same_in_a_locale_with_a_comma():
    plain = FILTER_SOMETHING + "chain[2].alpha = 0.3\nprint(chain.to_json(), chain, sum(int(frame.sum()) for frame in made))"
    german = "import locale\nlocale.setlocale(locale.LC_ALL, 'de_DE.UTF-8')\nassert locale.str(0.5) == '0,5'\n"
    if subprocess.run([sys.executable, "-c", german], capture_output=True).returncode != 0:
        pytest.skip("the locale de_DE.UTF-8 is not there")
    assert run_python(german + plain) == run_python(plain)


def test_nothing_is_printed():
    wrong = """
import sys, zvfilter
try:
    zvfilter.DisparityTransform(input=zvfilter.Input("disparity"))([[1]])
except zvfilter.Error:
    sys.exit(0)
sys.exit(1)
"""
    assert run_python(FILTER_SOMETHING) == "" and run_python(wrong) == ""


def run_mypy(*arguments, folder):
    command = [sys.executable, "-m", *arguments]
    done = subprocess.run(command, capture_output=True, text=True, cwd=folder, env={**os.environ, "MYPY_CACHE_DIR": str(folder / "cache")})
    return done.returncode, done.stdout + done.stderr


def test_types(tmp_path):
    pytest.importorskip("mypy")
    use = tmp_path / "use.py"
    use.write_text("""
import zvfilter
made: int = zvfilter.SpatialAdvancedFilter(alpha=0.4).radius
frame = zvfilter.Chain(["HoleFillingFilter:"])(zvfilter.read("a.png"))
zvfilter.write("b.png", frame)
zvfilter.SpatialAdvancedFilter(alfa=1)
zvfilter.HoleFillingFilter().hole_filling_mode = "top"
""")
    status, said = run_mypy("mypy", "--strict", "-p", "zvfilter", folder=tmp_path)
    assert status == 0, said
    status, said = run_mypy("mypy", "--strict", "use.py", folder=tmp_path)
    assert [int(line) for line in re.findall(r"use\.py:(\d+): error", said)] == [6, 7], said
    (tmp_path / "allowed").write_text("".join(f"zvfilter._zvfilter.Native{name}\n" for name in ("Camera", "Chain")))  # metaclasses
    status, said = run_mypy("mypy.stubtest", "zvfilter._zvfilter", "zvfilter.filters", "--allowlist", "allowed", folder=tmp_path)
    assert status == 0, said


def test_examples_in_docstrings(monkeypatch, tmp_path):
    import doctest
    monkeypatch.chdir(tmp_path)
    names = {name: getattr(zvfilter, name) for name in zvfilter.__all__}
    tried = 0
    for module in (zvfilter.chain, zvfilter.inputs, zvfilter.camera):
        results = doctest.testmod(module, extraglobs=names)
        assert results.failed == 0
        tried += results.attempted
    assert tried >= 8
