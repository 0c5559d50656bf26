"""Chains of filters."""

from __future__ import annotations

import dataclasses
import operator
import os
from collections.abc import Sequence
from typing import Any, Iterable, List, Optional, Tuple, Union, overload

import numpy.typing as npt

from . import _zvfilter
from .arrays import Frame, as_frame
from .inputs import Input, Path
from .runner import PARAMETER_TYPES, Runner, StepAccess, Value


@dataclasses.dataclass(frozen=True)
class Stage:
    """What a step did to the last frame.

    Attributes
    ----------
    name, tag : str
        The filter's name and the step's tag; empty without one.
    milliseconds : float
        0 for a step that is off.
    array : ndarray or None
        What it made; None when it was not asked for or the step is off.
    """

    name: str
    tag: str
    milliseconds: float
    array: Optional[Frame]


class Step(StepAccess):
    """A step of a chain. The filter's parameters are its attributes; they may be set between frames.

    Examples
    --------
    >>> chain = Chain(["smooth=SpatialAdvancedFilter:alpha=0.5"])
    >>> chain["smooth"].alpha = 0.25
    >>> chain[0]
    SpatialAdvancedFilter(alpha=0.25, tag='smooth')
    """

    __slots__ = ("_native", "_number")

    def __init__(self, native: _zvfilter.NativeChain, number: int) -> None:
        object.__setattr__(self, "_native", native)
        object.__setattr__(self, "_number", number)

    def __getattr__(self, name: str) -> Any:
        if name.startswith("_") or name not in PARAMETER_TYPES[self.filter]:
            raise AttributeError(self._unknown(name))
        return self._get(name)

    def __setattr__(self, name: str, value: Value) -> None:
        if name in PARAMETER_TYPES[self.filter]:
            self.set(**{name: value})
        elif name == "enabled":
            object.__setattr__(self, name, value)
        else:
            raise AttributeError(self._unknown(name))

    def __dir__(self) -> Iterable[str]:
        return [*super().__dir__(), *PARAMETER_TYPES[self.filter]]

    def _unknown(self, name: str) -> str:
        known = ", ".join(PARAMETER_TYPES[self.filter])
        return f"{self.filter} has no parameter {name}; " + (f"known: {known}" if known else "it has none")


AnyStep = Union[StepAccess, str]


class Chain(Runner, Sequence[Step]):
    """Filters that follow each other.

    Steps are found by number, ``chain[0]``, and by tag or filter, ``chain["smooth"]``. Threads may share a chain; each frame
    is one piece of work.

    Parameters
    ----------
    steps : iterable of filters, steps and texts
        A filter such as ``SpatialAdvancedFilter(alpha=0.4)``, a step of another chain, or a text ``[TAG=]FILTER[:key=value,...]``.
        The chain takes over their values and tags, not the objects: change a step through the chain. To put steps in another
        order make another chain: ``Chain([*chain[:2], "HoleFillingFilter:"])``.
    input : Input, optional
        What the frames are; depth in millimetres if not given.

    Raises
    ------
    InvalidError
        For a filter, a key or a value that is not known or out of range; its ``step``, ``tag`` and ``key`` say where.

    Examples
    --------
    >>> chain = Chain([NoiseRemovalFilter(max_size=60), "smooth=SpatialAdvancedFilter:alpha=0.4"], input=Input("linear"))
    >>> import numpy
    >>> chain(numpy.full((48, 64), 1000, numpy.uint16)).shape
    (48, 64)
    """

    __slots__ = ("_keep_stages", "_stages")
    _keep_stages: bool
    _stages: List[Stage]
    __hash__ = None  # type: ignore[assignment]

    def __init__(self, steps: Iterable[AnyStep] = (), *, input: Optional[Input] = None) -> None:
        if isinstance(steps, str):
            raise TypeError("steps is a text; for a whole chain in a text there is Chain.parse()")
        self._adopt(_zvfilter.NativeChain(""))
        for step in steps:
            if isinstance(step, StepAccess):
                self._native.append(step._text(), step.enabled)
            elif isinstance(step, str):
                self._native.append(step, True)
            else:
                raise TypeError(f"a step is a filter, a step of a chain or a text, not {step!r}")
        if input is not None:
            self.input = input

    def _adopt(self, native: _zvfilter.NativeChain) -> None:
        self._native = native
        self._keep_stages = False
        self._stages = []

    @classmethod
    def _of(cls, native: _zvfilter.NativeChain) -> Chain:
        chain = cls.__new__(cls)
        chain._adopt(native)
        return chain

    @classmethod
    def parse(cls, text: str) -> Chain:
        """The chain that a text describes: the JSON of a chain file, or steps with semicolons or line ends between them."""
        return cls._of(_zvfilter.NativeChain(text))

    @classmethod
    def load(cls, path: Path) -> Chain:
        """The chain in a chain file.

        Raises
        ------
        FileError
            When it cannot be read.
        InvalidError
            When it holds no chain.
        """
        return cls._of(_zvfilter.NativeChain.load(os.fsencode(path)))

    def save(self, path: Path) -> None:
        """Write the chain file, whole or not at all. The size of frames is not in it.

        Raises
        ------
        FileError
        """
        _zvfilter.write_text(os.fsencode(path), self.to_json())

    def __call__(self, frame: npt.ArrayLike, stages: bool = False) -> Frame:
        """Filter a frame, as `Filter` does; see there for what a frame is and what may be raised.

        Parameters
        ----------
        frame : array_like, shape (height, width)
        stages : bool
            Keep what each step makes of this frame for `stages`.

        Returns
        -------
        ndarray of uint16
            A new, writable array.
        """
        made, milliseconds, arrays = self._native.run(as_frame(frame), stages or self._keep_stages)
        steps = [self._native.step(number) for number in range(len(milliseconds))]
        self._stages = [Stage(step[0], step[1], time, array) for step, time, array in zip(steps, milliseconds, arrays)]
        return made

    @property
    def stages(self) -> List[Stage]:
        """What each step did to the last frame, in order; empty before the first. Arrays are there if they were asked for."""
        return list(self._stages)

    @property
    def keep_stages(self) -> bool:
        """Whether every call keeps what each step makes, which costs a copy a step."""
        return self._keep_stages

    @keep_stages.setter
    def keep_stages(self, value: bool) -> None:
        self._keep_stages = bool(value)

    def __len__(self) -> int:
        return self._native.size()

    @overload
    def __getitem__(self, index: Union[int, str]) -> Step: ...
    @overload
    def __getitem__(self, index: slice) -> List[Step]: ...

    def __getitem__(self, index: Union[int, str, slice]) -> Union[Step, List[Step]]:
        if isinstance(index, slice):
            return [Step(self._native, number) for number in range(*index.indices(len(self)))]
        if isinstance(index, str):
            number = -1 if index.isdigit() else self._native.find(index)
            if number < 0:
                raise KeyError(f"no step, or more than one, is {index}")
        else:
            number = operator.index(index)
            number += len(self) if number < 0 else 0
            if not 0 <= number < len(self):
                raise IndexError(f"there is no step {index}; the chain has {len(self)}")
        return Step(self._native, number)

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Chain):
            return NotImplemented
        return list(self) == list(other) and self.input == other.input

    def __repr__(self) -> str:
        steps = ", ".join(repr(step) for step in self)
        known = f", input={self.input!r}" if self.input != Input() else ""
        return f"Chain([{steps}]{known})"
