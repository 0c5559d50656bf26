"""Arrays as frames: rows and columns of unsigned 16-bit samples."""

from __future__ import annotations

from typing import Any

import numpy as np
import numpy.typing as npt

Frame = npt.NDArray[np.uint16]

_MOST = 65535


def as_samples(array: npt.NDArray[Any]) -> Frame:
    """The array as unsigned 16-bit samples; itself where it is that already.

    Raises
    ------
    TypeError
        For anything but whole numbers.
    ValueError
        For a value that 16 bits cannot hold.
    """
    if array.dtype == np.uint16:
        return array
    if array.dtype.kind == "f":
        raise TypeError(f"samples are whole numbers, these are {array.dtype}; float depth in metres? multiply by "
                        "1000 / value_scale, round and convert: (1000 / value_scale * depth).round().astype(numpy.uint16)")
    if array.dtype.kind == "b":
        raise TypeError("samples are distances or disparities, these are bool; a mask? multiply it with a frame")
    if array.dtype.kind not in "iu":
        raise TypeError(f"samples are whole numbers of 16 bits, these are {array.dtype}")
    outside = (array < 0) | (array > _MOST)
    if outside.any():
        place = tuple(int(i) for i in np.argwhere(outside)[0])
        raise ValueError(f"the sample at {place} is {array[place]}; expected 0 to {_MOST}")
    return array.astype(np.uint16)


def as_frame(frame: npt.ArrayLike) -> Frame:
    """The frame as the filters read it: without a copy where the samples of a row lie side by side, else copied.

    Raises
    ------
    TypeError, ValueError
        For samples of another kind, see `as_samples`, and for an array that has not two dimensions.
    """
    array = np.asarray(frame)
    if array.ndim != 2:
        hint = "; a sequence of frames is for stream()" if array.ndim == 3 else ""
        raise ValueError(f"a frame has 2 dimensions, rows and columns; this array has {array.ndim}{hint}")
    samples = as_samples(array)
    height, width = samples.shape
    between_rows, between_columns = samples.strides
    side_by_side = width < 2 or between_columns == samples.itemsize
    one_after_the_other = height < 2 or between_rows >= width * samples.itemsize
    if side_by_side and one_after_the_other and samples.flags.aligned:
        return samples
    return np.ascontiguousarray(samples)
