"""What filters and chains have in common, and filters."""

from __future__ import annotations

import json
import operator
from typing import Any, ClassVar, Dict, Iterable, Iterator, Optional, Tuple, TypeVar, Union

import numpy.typing as npt

from . import _zvfilter
from .arrays import Frame, as_frame
from .inputs import Input, Output

Value = Union[int, float, bool]
Self = TypeVar("Self", bound="Runner")
SomeFilter = TypeVar("SomeFilter", bound="Filter")

#: By filter and parameter: its type in the schema.
PARAMETER_TYPES: Dict[str, Dict[str, str]] = {
    name: {parameter[0]: parameter[1] for parameter in parameters} for name, parameters in _zvfilter.filters}


def value_text(value: Value) -> str:
    """The value as the text of a chain has it, whatever the locale."""
    try:
        return str(operator.index(value))  # type: ignore[arg-type]
    except TypeError:
        pass
    if isinstance(value, (str, bytes)):
        raise TypeError(f"a value is a number, not {value!r}")
    return repr(float(value))


def values_text(values: Dict[str, Value]) -> str:
    return ",".join(f"{key}={value_text(value)}" for key, value in values.items())


def as_typed(value: float, type_name: str) -> Value:
    """A number of the library as the schema's type of it."""
    if type_name == "float":
        return value
    return bool(value) if type_name == "bool" else int(value)


class Runner:
    """What filters frames. Threads may share it: one frame is filtered at a time, and other Python threads run meanwhile."""

    __slots__ = ("_native", "__weakref__")
    _native: _zvfilter.NativeChain

    def __call__(self, frame: npt.ArrayLike) -> Frame:
        """Filter a frame.

        Parameters
        ----------
        frame : array_like, shape (height, width)
            Whole numbers from 0 to 65535, 0 for no depth; the unit is that of `input`. It is read without a copy where it is
            uint16 and its rows have no gaps inside, and never written to. No other thread may write to it meanwhile.

        Returns
        -------
        ndarray of uint16
            A new, writable array. Its shape may differ, see `output_for`.

        Raises
        ------
        TypeError
            For samples that are no whole numbers.
        ValueError
            For an array that is no frame.
        InvalidError, FailedError
            For an input that a filter cannot take, and when one fails.
        """
        return self._native.run(as_frame(frame), False)[0]

    def stream(self, frames: Iterable[npt.ArrayLike]) -> Iterator[Frame]:
        """Filter frames as they come: one result for each. What filters remember goes on from the frames before."""
        for frame in frames:
            yield self(frame)

    def reset(self) -> None:
        """Forget the frames seen so far; values stay. For the start of another sequence."""
        self._native.reset()

    @property
    def input(self) -> Input:
        """What the frames are; depth in millimetres, unless something else was said. Another one resets."""
        return Input(**self._native.input())

    @input.setter
    def input(self, value: Input) -> None:
        self._native.set_input(value._fields())

    def output_for(self, shape: Tuple[int, int]) -> Output:
        """What would be made of frames of this shape, ``(height, width)``. Nothing is filtered and nothing forgotten."""
        height, width = (operator.index(side) for side in shape)
        made_width, made_height, fields = self._native.output(width, height)
        return Output((made_height, made_width), Input(**fields))

    def copy(self: Self) -> Self:
        """The same filters with the same values and input, which have seen no frame."""
        return self._of(self._native.copy())

    def __copy__(self: Self) -> Self:
        return self.copy()

    def __deepcopy__(self: Self, memo: Any) -> Self:
        return self.copy()

    def to_json(self) -> str:
        """The text of a chain file."""
        return self._native.json()

    @classmethod
    def _of(cls: type[Self], native: _zvfilter.NativeChain) -> Self:
        result = cls.__new__(cls)
        result._native = native
        return result

    @classmethod
    def _of_json(cls: type[Self], text: str) -> Self:
        return cls._of(_zvfilter.NativeChain(text))

    def __reduce__(self) -> Tuple[Any, ...]:
        return (type(self)._of_json, (self.to_json(),))


class StepAccess:
    """A step of a chain that is asked and changed: its place is `_native` and `_number`."""

    __slots__ = ()
    _native: _zvfilter.NativeChain
    _number: int
    __hash__ = None  # type: ignore[assignment]

    @property
    def filter(self) -> str:
        """The filter's name."""
        return self._native.step(self._number)[0]

    @property
    def tag(self) -> str:
        """What the step is called; empty without a tag."""
        return self._native.step(self._number)[1]

    @property
    def enabled(self) -> bool:
        """Whether the step is on. One that is off hands frames through and keeps what it has seen."""
        return self._native.step(self._number)[2]

    @enabled.setter
    def enabled(self, value: bool) -> None:
        self._native.enable(self._number, bool(value))

    @property
    def as_made(self) -> bool:
        """Whether it was never given values, its defaults included."""
        return self._native.step(self._number)[3]

    @property
    def values(self) -> Dict[str, Value]:
        """All its values by name; those never given are the schema's defaults."""
        return {key: self._get(key) for key in PARAMETER_TYPES[self.filter]}

    def set(self, **values: Value) -> None:
        """Set values, all or none, from the next frame on.

        Raises
        ------
        InvalidError
            For an unknown name, a value of the wrong type and one out of range. Nothing has changed then.
        """
        self._native.set(self._number, values_text(values))

    def _get(self, key: str) -> Value:
        return as_typed(self._native.get(self._number, key), PARAMETER_TYPES[self.filter].get(key, "float"))

    def _described(self) -> Dict[str, Any]:
        """As a chain file has it: a value that was not given may follow from the frames."""
        described: Dict[str, Any] = json.loads(self._native.json())["steps"][self._number]
        return described

    def _text(self) -> str:
        values = self._described().get("values")
        tag = f"{self.tag}=" if self.tag else ""
        return tag + self.filter + ("" if values is None else ":" + values_text(values))

    def __eq__(self, other: object) -> bool:
        """Whether a chain file would say the same of both."""
        if not isinstance(other, StepAccess):
            return NotImplemented
        return self._described() == other._described()

    def __repr__(self) -> str:
        texts = [f"{key}={self._get(key)!r}" for key in self._described().get("values", {})]
        texts += [f"tag={self.tag!r}"] if self.tag else []
        texts += [] if self.enabled else ["enabled=False"]
        return f"{self.filter}({', '.join(texts)})"


class Filter(StepAccess, Runner):
    """A filter by itself. Its classes are named after the filters; their parameters are keyword arguments and attributes."""

    __slots__ = ()
    _name: ClassVar[str]
    _number = 0

    def __init__(self, *, tag: str = "", enabled: bool = True, input: Optional[Input] = None, **values: Value) -> None:
        self._native = _zvfilter.NativeChain("")
        step = f"{tag}={self._name}" if tag else self._name
        self._native.append(f"{step}:{values_text(values)}", bool(enabled))
        if input is not None:
            self.input = input
