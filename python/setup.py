"""Builds the extension with CMake, in a folder of its own or, where ZVFILTER_BUILD names one, in that configured build."""

import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = Path(__file__).resolve().parent.parent


def version() -> str:
    return re.search(r"set\(zvfilter_version ([0-9.]+)\)", (ROOT / "library/CMakeLists.txt").read_text())[1]


class BuildWithCMake(build_ext):
    def build_extension(self, ext: Extension) -> None:
        configured = os.environ.get("ZVFILTER_BUILD")
        build = Path(configured or self.build_temp).resolve()
        if not configured:
            subprocess.run(["cmake", "-S", ROOT, "-B", build, "-DCMAKE_BUILD_TYPE=Release", "-DBUILD_TESTING=OFF",
                            "-DFILTERPROCESSOR_TOOLS=OFF", "-DFILTERPROCESSOR_ZVFILTER=ON", "-DFILTERPROCESSOR_PYTHON=ON",
                            f"-DPython_EXECUTABLE={sys.executable}"], check=True)
        subprocess.run(["cmake", "--build", build, "--target", "zvfilter_python", "--parallel"], check=True)
        package = Path(self.get_ext_fullpath(ext.name)).parent
        package.mkdir(parents=True, exist_ok=True)
        for pattern in ("_zvfilter.*", "*.pyi"):
            for file in (build / "lib/python/zvfilter").glob(pattern):
                shutil.copy(file, package)


setup(version=version(), ext_modules=[Extension("zvfilter._zvfilter", [])], cmdclass={"build_ext": BuildWithCMake})
