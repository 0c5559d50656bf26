"""The filters as classes, made from what the library says of them."""

from __future__ import annotations

import inspect
from typing import Any

from . import _zvfilter
from .runner import Filter, as_typed

__all__ = ["Filter"]

_KINDS = {"float": float, "bool": bool}


def _annotation(type_name: str) -> type:
    return _KINDS.get(type_name, int)


def _attribute(name: str, doc: str) -> property:
    return property(lambda self: self._get(name), lambda self, value: self.set(**{name: value}), doc=doc)


def _number(value: float) -> str:
    return f"{value:g}" if value != int(value) else str(int(value))


def _make_class(name: str, parameters: list[tuple[str, str, float, float, float, str]]) -> type[Filter]:
    keyword = inspect.Parameter.KEYWORD_ONLY
    signature = [inspect.Parameter("self", inspect.Parameter.POSITIONAL_OR_KEYWORD)]
    lines = ["Parameters", "----------"]
    body: dict[str, Any] = {"__slots__": (), "_name": name, "__module__": __name__}
    for parameter, kind, least, most, default, description in parameters:
        typed = as_typed(default, kind)
        signature.append(inspect.Parameter(parameter, keyword, default=typed, annotation=_annotation(kind)))
        text = f"{description.strip()}. {_number(least)} to {_number(most)}, {_number(default)} by default."
        lines += [f"{parameter} : {_annotation(kind).__name__}", f"    {text}"]
        body[parameter] = _attribute(parameter, text)
    signature += [inspect.Parameter("tag", keyword, default="", annotation=str),
                  inspect.Parameter("enabled", keyword, default=True, annotation=bool),
                  inspect.Parameter("input", keyword, default=None)]
    lines += ["tag : str", "    What the step is called in a chain.",
              "enabled : bool", "    One that is off hands frames through.",
              "input : Input, optional", "    What the frames are; depth in millimetres if not given.",
              "", "Raises", "------", "InvalidError", "    For a value that is out of range or of the wrong type."]

    def __init__(self: Filter, **values: Any) -> None:
        unknown = [key for key in values if key not in __init__.__signature__.parameters]  # type: ignore[attr-defined]
        if unknown:
            raise TypeError(f"{name} has no parameter {unknown[0]}")
        Filter.__init__(self, **values)

    __init__.__signature__ = inspect.Signature(signature)  # type: ignore[attr-defined]
    body["__init__"] = __init__
    body["__doc__"] = f"The filter {name}; see `Filter`.\n\n" + "\n".join(lines) + "\n"
    return type(name, (Filter,), body)


for _name, _parameters in _zvfilter.filters:
    globals()[_name] = _make_class(_name, _parameters)
    __all__.append(_name)
