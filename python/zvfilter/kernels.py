"""The kernels under the filters, as functions of arrays.

They know no units and no cameras, and remember nothing. Images are arrays of uint16, shape (height, width), as for filters; results
are new arrays. All raise ``ValueError`` with the cause for what they refuse, and ``TypeError`` for samples that are no whole
numbers. Any thread may call them; other Python threads run meanwhile.

Functions that take `lut` compare a sample's neighbours with a threshold from that table of at most 255 entries: entry
``(value >> lut_shift) % 256``, the last one when that is past the end.
"""

from __future__ import annotations

from typing import Optional, Tuple

import numpy as np
import numpy.typing as npt

from . import _zvfilter
from .arrays import Frame, as_frame, as_samples

__all__ = ["chamfer", "downsample", "fill_holes", "horizontal_margin", "margin", "margin_asym", "margin_with_chamfer",
           "remove_speckles", "remove_speckles_full", "remove_speckles_half", "remove_speckles_pyramid", "spatial", "temporal",
           "upsample"]


def _table(lut: Optional[npt.ArrayLike]) -> Optional[Frame]:
    return None if lut is None else as_samples(np.asarray(lut))


def fill_holes(depth: npt.ArrayLike, mode: int) -> Frame:
    """Give holes (0) the value of a neighbour: the pixel above (mode 0), or the smallest (1) or largest (2) of those above,
    below and to the left. Filled pixels fill their successors."""
    return _zvfilter.fill_holes(as_frame(depth), mode)


def horizontal_margin(depth: npt.ArrayLike, margin: int, limit: int) -> Frame:
    """Clear `margin` pixels of each row from its first valid pixel on, and as many before its last, where these lie within
    `limit` columns of their border."""
    return _zvfilter.horizontal_margin(as_frame(depth), margin, limit)


def margin(depth: npt.ArrayLike, margin_x: int, margin_y: int, limit_x: int, limit_y: int) -> Frame:
    """Clear the margins of rows, as `horizontal_margin`, and those of columns."""
    return _zvfilter.margin(as_frame(depth), margin_x, margin_y, limit_x, limit_y)


def margin_asym(depth: npt.ArrayLike, margin_large: int, margin_small: int, margin_y: int, limit_x: int, limit_y: int) -> Frame:
    """Clear margins, the large one on the side, left or right, whose gap is more than 1.2 times the other's."""
    return _zvfilter.margin_asym(as_frame(depth), margin_large, margin_small, margin_y, limit_x, limit_y)


def margin_with_chamfer(depth: npt.ArrayLike, margin_y: int, limit_x: int, limit_y: int, chamfer: npt.ArrayLike) -> Frame:
    """Clear margins, those of rows from a table of a left and a right one for each, shape (height, 2). See `chamfer`."""
    return _zvfilter.margin_with_chamfer(as_frame(depth), margin_y, limit_x, limit_y, as_frame(chamfer))


def chamfer(span: int, count: int, corner_first: int, base: int, corner_second: int = 0, radius: int = 0) -> Frame:
    """A table for `margin_with_chamfer`, shape (count, 2): `base` and, at both ends, a corner value that falls along a circle.

    Parameters
    ----------
    span, count : int
        Width and height of the image, pixels.
    corner_first, corner_second : int
        Of the left and of the right margins, pixels; a second of 0 is the first.
    base : int
        Pixels.
    radius : int
        Pixels, at least half of `count`; 0 for half of the larger side.
    """
    return _zvfilter.chamfer(span, count, corner_first, base, corner_second, radius)


def spatial(depth: npt.ArrayLike, *, disp_diff: float = 0, lut: Optional[npt.ArrayLike] = None, lut_shift: int = 0,
            magnitude: int = 1, radius: int = 0, horizontal: bool = True, vertical: bool = True, alpha: float = 0.5) -> Frame:
    """Smooth without crossing edges: blend each pixel with its neighbour where they differ by less than a threshold.

    It stands for all three spatial kernels: those that take only a table or only a fixed threshold do what this one does with it.

    Parameters
    ----------
    disp_diff : float
        The threshold without a `lut`.
    magnitude : int
        Iterations, at least 1.
    radius : int
        Of a run of holes the horizontal passes fill ``radius - 1`` from each side.
    horizontal, vertical : bool
        Which passes run; not neither.
    alpha : float
        Weight of the pixel itself, 0 to 1.
    """
    return _zvfilter.spatial(as_frame(depth), _table(lut), lut_shift, disp_diff, magnitude, radius, horizontal, vertical, alpha)


def temporal(depth: npt.ArrayLike, history: Optional[npt.ArrayLike], diff_scale: float, weight: float) -> Tuple[Frame, Frame]:
    """Blend each pixel with the last result at its place where they differ by less than a share of the smaller.

    Parameters
    ----------
    history : array_like or None
        The second result of the call before; None at first.
    diff_scale : float
        Largest change that is smoothed, as a share of the smaller value.
    weight : float
        Of the frame at hand, 0 to 1.

    Returns
    -------
    result, history : ndarray
    """
    frame = as_frame(depth)
    return _zvfilter.temporal(frame, np.zeros_like(frame) if history is None else as_frame(history), diff_scale, weight)


def remove_speckles(depth: npt.ArrayLike, max_size: int = 0, *, max_size_map: Optional[npt.ArrayLike] = None, max_diff: int = 16,
                    lut: Optional[npt.ArrayLike] = None, lut_shift: int = 0, invalid_value: int = 0) -> Frame:
    """Invalidate small regions of similar values, in the form that suits the image's size.

    Parameters
    ----------
    max_size : int
        Pixels of the largest region that goes; below 1 for a default.
    max_size_map : array_like, optional
        Such limits by cells of a grid over the image, instead of `max_size`; for images with a side of 640 or 1280 in quarters.
    max_diff : int
        Largest difference of neighbours in one region, without a `lut`.
    invalid_value : int
        Of pixels that belong to no region.
    """
    return _zvfilter.remove_speckles(as_frame(depth), max_size, _table(max_size_map), max_diff, _table(lut), lut_shift,
                                     invalid_value)


def remove_speckles_pyramid(depth: npt.ArrayLike, max_size: int = 0, *, max_size_map: Optional[npt.ArrayLike] = None,
                            max_diff: int = 16, lut: Optional[npt.ArrayLike] = None, lut_shift: int = 0,
                            invalid_value: int = 0) -> Frame:
    """The same on every second pixel of every second row, each for its block of four: limits are a quarter."""
    return _zvfilter.remove_speckles_pyramid(as_frame(depth), max_size, _table(max_size_map), max_diff, _table(lut), lut_shift,
                                             invalid_value)


def remove_speckles_full(depth: npt.ArrayLike, max_size: int, max_diff: int = 16, invalid_value: int = 0) -> Frame:
    """The same on every pixel."""
    return _zvfilter.remove_speckles_full(as_frame(depth), max_size, max_diff, invalid_value)


def remove_speckles_half(depth: npt.ArrayLike, max_size: int, max_diff: int = 16, invalid_value: int = 0) -> Frame:
    """The same on the image at half size, carried back: `downsample`, `remove_speckles_full`, `upsample`."""
    return _zvfilter.remove_speckles_half(as_frame(depth), max_size, max_diff, invalid_value)


def downsample(depth: npt.ArrayLike) -> Frame:
    """The pixels of odd rows and odd columns: half the size."""
    return _zvfilter.downsample(as_frame(depth))


def upsample(full: npt.ArrayLike, half: npt.ArrayLike, max_diff: int) -> Frame:
    """Carry the removals in an image of half the size back to the full one."""
    return _zvfilter.upsample(as_frame(full), as_frame(half), max_diff)
