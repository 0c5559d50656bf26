"""What the filters refuse, as exceptions that say where."""

from __future__ import annotations

import enum
from typing import Optional


class Code(enum.IntEnum):
    """What kind of thing went wrong."""

    BAD_ARGUMENT = 1
    BAD_CHAIN = 2
    BAD_INPUT = 3
    FAILED = 4
    NO_MEMORY = 5
    NO_FILE = 6


class Error(Exception):
    """What this package refuses. It is always one of the subclasses, and so a ``ValueError``, ``RuntimeError`` or ``OSError`` too.

    Attributes
    ----------
    code : Code
    step : int or None
        The step's number, from 0.
    tag : str or None
        The step's tag or, without one, its filter.
    key : str or None
        The parameter or field.
    """

    def __init__(self, message: str, code: Code = Code.FAILED, step: Optional[int] = None, tag: Optional[str] = None,
                 key: Optional[str] = None) -> None:
        super().__init__(message)
        self.code = code
        self.step = step
        self.tag = tag
        self.key = key


class InvalidError(Error, ValueError):
    """An argument, a chain, a value or an input that cannot be."""


class FailedError(Error, RuntimeError):
    """A filter that failed on a frame."""


class FileError(Error, OSError):
    """A file that cannot be read or written."""


def error_of(code: int, step: int, tag: str, key: str, message: str) -> Exception:
    """The exception for a failure of the library, whose texts are empty and whose step is negative when there is none."""
    if code == Code.NO_MEMORY:
        return MemoryError(message)
    kinds = {Code.FAILED: FailedError, Code.NO_FILE: FileError}
    kind = kinds.get(Code(code), InvalidError)
    return kind(message, Code(code), step if step >= 0 else None, tag or None, key or None)
