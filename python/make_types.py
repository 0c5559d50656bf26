#!/usr/bin/env python3
"""Writes the types of what Python cannot see: the extension, and the classes made from the filters' own descriptions.

Use: make_types.py PACKAGE    (the built package's folder; files go there)
"""

import importlib
import inspect
import re
import sys
from pathlib import Path

HEAD = "# Made by make_types.py. Do not edit.\n"
REPLACED = [("zvfilter._zvfilter.", ""), ("numpy.ndarray[numpy.uint16]", "_Pixels"), ("std::uint16_t", "int")]


def typed(signature: str) -> str:
    for old, new in REPLACED:
        signature = signature.replace(old, new)
    signature = re.sub(r"\b(List|Tuple)\[", lambda match: match[1].lower() + "[", signature)
    signature = re.sub(r"\bOptional\[((?:[^\[\]]|\[[^\[\]]*\])*)\]", r"\1 | None", signature)
    # Paths may be bytes.
    signature = re.sub(r"\bpath: str", "path: str | bytes", signature)
    return re.sub(r"\bdict\b", "dict[str, Any]", re.sub(r"\btuple\b(?!\[)", "tuple[_Pixels, _Pixels]", signature))


def function_lines(function, indent: str, static: bool = False) -> list[str]:
    """pybind11 begins a docstring with the signature."""
    signature = typed(inspect.getdoc(function).splitlines()[0])
    signature = re.sub(r"\(self: \w+", "(self", signature)
    return ([indent + "@staticmethod"] if static else []) + [f"{indent}def {signature}: ..."]


def extension_text(module) -> str:
    lines = [HEAD + "from typing import Any", "", "import numpy as np", "import numpy.typing as npt", "",
             "_Pixels = npt.NDArray[np.uint16]", "", "version: str", "extensions: list[str]", "preview_suffix: str",
             "filters: list[tuple[str, list[tuple[str, str, float, float, float, str]]]]", ""]
    for name, value in sorted(vars(module).items()):
        if inspect.isclass(value):
            lines += ["", f"class {name}:"]
            for member_name, member in vars(value).items():
                if member_name.startswith("__") and member_name != "__init__":
                    continue
                static = isinstance(member, staticmethod)
                lines += function_lines(member.__func__ if static else member, "    ", static)
            lines.append("")
        elif callable(value):
            lines += function_lines(value, "")
    return "\n".join(lines) + "\n"


def filters_text(filters, runner) -> str:
    lines = [HEAD + "from .inputs import Input", "from .runner import Filter as Filter", "",
             f"__all__ = {filters.__all__!r}"]
    for name in filters.__all__:
        kind = getattr(filters, name)
        if kind is runner.Filter:
            continue
        parameters = list(inspect.signature(kind).parameters.values())
        values = [parameter for parameter in parameters if parameter.name in runner.PARAMETER_TYPES[name]]
        lines += ["", f"class {name}(Filter):"]
        lines += [f"    {value.name}: {value.annotation.__name__}" for value in values]
        given = ["self", "*"] + [f"{value.name}: {value.annotation.__name__} = {value.default!r}" for value in values]
        given += ["tag: str = ''", "enabled: bool = True", "input: Input | None = None"]
        lines.append(f"    def __init__({', '.join(given)}) -> None: ...")
    return "\n".join(lines) + "\n"


def main() -> None:
    package = Path(sys.argv[1])
    sys.path.insert(0, str(package.parent))
    sys.dont_write_bytecode = True
    extension = importlib.import_module("zvfilter._zvfilter")
    filters, runner = (importlib.import_module(f"zvfilter.{name}") for name in ("filters", "runner"))
    (package / "_zvfilter.pyi").write_text(extension_text(extension), "utf-8")
    (package / "filters.pyi").write_text(filters_text(filters, runner), "utf-8")


if __name__ == "__main__":
    main()
