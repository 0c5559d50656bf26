"""Filters and values that suit a recording."""

from __future__ import annotations

import dataclasses
from typing import Callable, Dict, Iterable, List, Mapping, Optional

import numpy.typing as npt

from . import _zvfilter
from .arrays import as_frame
from .chain import Chain
from .inputs import Input

#: Told after each batch: evaluations done, the most there will be, the loss of the best chain so far, and that chain as a text.
Progress = Callable[[int, int, float, str], Optional[bool]]


@dataclasses.dataclass(frozen=True)
class Advice:
    """What `advise` found.

    Attributes
    ----------
    chain : Chain
        With its values; where no filter helps, nothing but the conversion that disparity needs.
    helps : bool
        Whether it is better than untouched frames.
    rows : dict
        By name, "untouched", "defaults" and "advised": the values of all measures, less is better, and their weighted ``loss``, which
        is 1 for untouched frames. Errors are millimetres with truth, 1/m without; all else are shares.
    held_out : bool
        Whether rows are of frames that the search has not seen.
    reasons : list of str
        Why each step is in.
    remarks : list of str
        What limits the answer.
    evaluations : int
        How many chains were tried on frames.
    """

    chain: Chain
    helps: bool
    rows: Dict[str, Dict[str, float]]
    held_out: bool
    reasons: List[str]
    remarks: List[str]
    evaluations: int


def advise(frames: Iterable[npt.ArrayLike], truth: Optional[Iterable[npt.ArrayLike]] = None, *, chain: Optional[Chain] = None,
           step: Optional[str] = None, input: Optional[Input] = None, weights: Optional[Mapping[str, float]] = None,
           seed: int = 1, evaluations: Optional[int] = None, seconds: float = 60, threads: int = 0,
           progress: Optional[Progress] = None) -> Advice:
    """Find filters and values that suit a recording. Other Python threads run meanwhile.

    Parameters
    ----------
    frames : iterable of array_like, shape (height, width)
        Raw frames that follow each other, all of one size. All are held in memory.
    truth : iterable of array_like, optional
        The true depth of each, millimetres, 0 where it is not known.
    chain : Chain, optional
        Whose values are looked for. Without it, sensible orders of filters are tried.
    step : str, optional
        The only step of the chain whose values are looked for: its tag, filter or number from 1.
    input : Input, optional
        What the frames are; that of the chain, or else depth in millimetres, if not given.
    weights : mapping, optional
        What measures count: missing, median, p95, off, flicker, roughness, speckles; from 0 to 1000.
    seed : int
        Of the search.
    evaluations : int, optional
        How many chains to try on frames; the answer is then the same every time, for any number of threads.
    seconds : float
        Time to search, where evaluations are not given.
    threads : int
        0: one for each processor.
    progress : callable, optional
        Called with evaluations done, their limit, the best loss so far and its chain as a text. False ends the search with the best
        so far.

    Raises
    ------
    InvalidError
        For frames, a chain or weights that make no sense.

    Examples
    --------
    >>> camera = VirtualCamera((96, 64), frames=8)
    >>> found = advise([frame.disparity for frame in camera], input=camera.input, evaluations=8)
    >>> found.chain[0].filter
    'DisparityTransform'
    """
    raw = [as_frame(frame) for frame in frames]
    true = [as_frame(frame) for frame in truth] if truth is not None else []
    if truth is not None and len(true) != len(raw):
        raise ValueError(f"there are {len(true)} frames of truth; expected {len(raw)}, one for each frame")
    if evaluations is not None and evaluations < 1:
        raise ValueError(f"evaluations is {evaluations}; expected 1 or more")
    if input is None:
        input = chain.input if chain is not None else Input()
    found = _zvfilter.advise(raw, true, dataclasses.asdict(input), chain.to_json() if chain is not None else "", step or "",
                             [f"{name}={value!r}" for name, value in (weights or {}).items()], seed, evaluations, seconds,
                             threads, progress)
    result = Chain.parse(found.pop("chain"))
    result.input = input
    return Advice(result, **found)
