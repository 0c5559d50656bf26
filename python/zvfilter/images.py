"""Image files: 16-bit PNG and PGM, NumPy's and raw samples."""

from __future__ import annotations

import os
from typing import Optional, Tuple

import numpy as np
import numpy.typing as npt

from . import _zvfilter
from .arrays import Frame, as_frame
from .inputs import Path


def read(path: Path, size: Optional[Tuple[int, int]] = None) -> Frame:
    """Read an image of one channel; samples keep all their 16 bits.

    Parameters
    ----------
    path : path-like
        A name ending in .png, .pgm, .npy, .raw, .bin, .tif or .tiff. Raw files are little-endian samples, row after row.
    size : (width, height), optional
        Of a raw file, which does not say it.

    Returns
    -------
    ndarray of uint16, shape (height, width)

    Raises
    ------
    FileError
        For a file that cannot be read or holds no such image.
    InvalidError
        For another name, and a raw file without a size.
    """
    width, height = size if size is not None else (0, 0)
    return _zvfilter.read_image(os.fsencode(path), width, height)


def write(path: Path, array: npt.ArrayLike) -> None:
    """Write a frame as an image of 16 bits, whole or not at all; an older file is replaced.

    Parameters
    ----------
    path : path-like
        The name's end says the format, as for `read`.
    array : array_like, shape (height, width)
        Whole numbers from 0 to 65535.

    Raises
    ------
    FileError, InvalidError
        As `read`.
    TypeError, ValueError
        For an array that is no frame.
    """
    _zvfilter.write_image(os.fsencode(path), np.ascontiguousarray(as_frame(array)))
