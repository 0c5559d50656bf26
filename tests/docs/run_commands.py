#!/usr/bin/env python3
"""Runs every command of a guide, in order, in an empty folder with the installed project on the paths.

Use: run_commands.py PREFIX GUIDE

console   lines after "$ " are commands (a line that ends in \\ goes on), the others what they print; "..." stands for anything
sh        a script
python    a program; those of a guide share their names
c, cpp    a file; its first line is a comment with its name, and a later command or file has to name it
"""

import contextlib
import io
import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

BLOCK = re.compile(r"^(```+)(console|sh|python|cpp|c)\n(.*?)^\1$", re.MULTILINE | re.DOTALL)


class Failure(Exception):
    pass


def environment(prefix: Path, home: str) -> dict:
    def inside(pattern: str) -> str:
        found = next(prefix.glob(pattern), None)
        if found is None:
            raise SystemExit(f"{prefix} has no {pattern}")
        return str(found.parent)

    libraries = inside("lib/**/libzvfilter.so")
    return {**os.environ, "HOME": home, "LC_ALL": "C.UTF-8", "PATH": f"{prefix}/bin:{os.environ['PATH']}", "LD_LIBRARY_PATH": libraries,
            "LIBRARY_PATH": libraries, "PKG_CONFIG_PATH": inside("lib/**/pkgconfig/zvfilter.pc"), "PYTHONPATH": str(Path(inside("lib/**/zvfilter/__init__.py")).parent),
            "CMAKE_PREFIX_PATH": str(prefix), "MPLBACKEND": "Agg"}


def same(shown: str, said: str) -> bool:
    pattern = ".*".join(re.escape(part) for part in shown.strip().split("..."))
    return re.fullmatch(pattern, said.strip(), re.DOTALL) is not None


class Guide:
    def __init__(self, file: Path) -> None:
        self.text = file.read_text()
        self.file = file
        self.names = {"__name__": "__main__"}
        self.unused = set()

    def run(self) -> int:
        count = 0
        for block in BLOCK.finditer(self.text):
            line = self.text.count("\n", 0, block.start()) + 2
            try:
                count += getattr(self, block[2])(block[3])
            except Failure as failure:
                sys.exit(f"{self.file}:{line}: {failure}")
        if self.unused:
            sys.exit(f"{self.file}: no command uses {', '.join(sorted(self.unused))}")
        return count

    def command(self, text: str) -> str:
        self.use(text)
        done = subprocess.run(["bash", "-euo", "pipefail", "-c", text], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
        if done.returncode != 0:
            raise Failure(f"exit status {done.returncode} of\n{text}\n{done.stdout}")
        return done.stdout

    def sh(self, text: str) -> int:
        self.command(text)
        return 1

    def console(self, text: str) -> int:
        commands = re.findall(r"^\$ ((?:.*\\\n)*.*)\n((?:(?!\$ ).*\n)*)", text, re.MULTILINE)
        if not commands or not text.startswith("$ "):
            raise Failure("a console block begins with a command after '$ '")
        for command, shown in commands:
            said = self.command(command)
            if shown.strip() and not same(shown, said):
                raise Failure(f"{command}\nprinted\n{said}the guide shows\n{shown}")
        return len(commands)

    def python(self, text: str) -> int:
        try:
            with contextlib.redirect_stdout(io.StringIO()):
                exec(compile(text, str(self.file), "exec"), self.names)  # noqa: S102 - that is what it is for
        except Exception as problem:  # noqa: BLE001 - whatever it is, the guide is wrong
            raise Failure(f"{type(problem).__name__}: {problem}\n{text}") from problem
        return 1

    def c(self, text: str) -> int:
        name = re.match(r"/[*/] (\w+\.(?:c|cpp|h))\b", text)
        if not name:
            raise Failure("a C or C++ block begins with a comment that is its file's name")
        self.use(text[name.end():])
        Path(name[1]).write_text(text)
        self.unused.add(name[1])
        return 0

    cpp = c

    def use(self, text: str) -> None:
        self.unused -= {name for name in self.unused if name in text}


def main() -> None:
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    prefix, file = (Path(word).resolve() for word in sys.argv[1:])
    with tempfile.TemporaryDirectory() as folder:
        if "GUIDE_FOLDER" not in os.environ:
            # Again, with the paths set, so that what a guide imports and runs is what is installed.
            done = subprocess.run([sys.executable, __file__, *sys.argv[1:]], env={**environment(prefix, folder), "GUIDE_FOLDER": folder}, check=False)
            sys.exit(done.returncode)
        os.chdir(folder)
        count = Guide(file).run()
    if count == 0:
        sys.exit(f"{file}: no command")
    print(f"{file.name}: {count} commands and programs ran")


if __name__ == "__main__":
    main()
