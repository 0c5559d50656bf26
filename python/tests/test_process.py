"""The module among others: what it shows of itself, a type checker."""

import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

import pytest

import zvfilter

PACKAGE = Path(zvfilter.__file__).parent


def test_the_extension_shows_one_name():
    if shutil.which("nm") is None:
        pytest.skip("there is no nm")
    [extension] = PACKAGE.glob("_zvfilter*.so")
    shown = subprocess.run(["nm", "--dynamic", "--defined-only", extension], check=True, capture_output=True, text=True).stdout
    assert [line.split()[-1] for line in shown.splitlines()] == ["PyInit__zvfilter"]
    assert not re.search(r" U zv", subprocess.run(["nm", "--dynamic", extension], capture_output=True, text=True).stdout)


def test_nothing_is_printed():
    code = """
import pytest, zvfilter
camera = zvfilter.VirtualCamera((128, 96), frames=2)
chain = zvfilter.Chain(["DisparityTransform:", "NoiseRemovalFilter:", "SpatialAdvancedFilter:", "DepthResize:"], input=camera.input)
made = list(chain.stream(frame.disparity for frame in camera))
with pytest.raises(zvfilter.Error):
    zvfilter.DisparityTransform(input=zvfilter.Input("disparity"))([[1]])
"""
    done = subprocess.run([sys.executable, "-c", code], capture_output=True, text=True)
    assert (done.returncode, done.stdout, done.stderr) == (0, "", "")


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
    results = [doctest.testmod(module, extraglobs=names) for module in (zvfilter.chain, zvfilter.inputs, zvfilter.camera)]
    assert sum(each.failed for each in results) == 0 and sum(each.attempted for each in results) >= 8
