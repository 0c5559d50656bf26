"""A camera that needs no hardware."""

from __future__ import annotations

import operator
from collections.abc import Sequence
from typing import List, NamedTuple, Optional, Tuple, Union, overload

from . import _zvfilter
from .arrays import Frame
from .inputs import Input


class CameraFrame(NamedTuple):
    """A frame of the virtual camera: disparity codes, and the true depth in millimetres, 0 where no surface is in range."""

    disparity: Frame
    truth: Frame


class VirtualCamera(Sequence[CameraFrame]):
    """A moving scene, rendered for two cameras and matched: disparity with the faults of real frames, and its true depth.

    It is a sequence of `CameraFrame`. Frames depend on the arguments and their number alone, and are made when they are asked for.

    Parameters
    ----------
    size : (width, height)
        64 to 4096 and 48 to 4096 pixels.
    frames : int
        Length of the sequence.
    seed : int
        Of the scene and of the noise.
    baseline : float
        Millimetres, 5 to 500.
    fx : float, optional
        Focal length, pixels; 0.7 times the width if not given.
    pack_mode : int
        Layout of a disparity code: 1, 2 or 3; 4 with one camera.
    bits : int, optional
        Of a disparity code, 11 to 16; one that suits the mode if not given.
    packed : bool
        Codes of 12 bits above 4 bits of confidence.
    correction : int, optional
        Disparity missing from every code, pixels, -128 to 128.
    dual : bool
        The parameters are those of two cameras.
    motion : {"objects", "still", "camera"}
        What moves: a box and a ball, nothing, or they and the camera.
    texture : float
        Contrast of textures and projected dots, 0 to 1.
    noise : float
        Deviation of the disparity 1 m away, pixels, 0 to 4; it grows with the distance and at grazing angles.
    speckle : float
        Share of the pixels that another projector spoils, 0 to 0.3.
    dropouts : float
        How likely a pixel beside an edge or on a dark or shiny surface is missing, 0 to 1.

    Raises
    ------
    ValueError
        Naming the argument that is wrong and what it may be.

    Examples
    --------
    >>> camera = VirtualCamera(frames=3)
    >>> to_depth = DisparityTransform(input=camera.input)
    >>> [to_depth(frame.disparity).shape for frame in camera]
    [(400, 640), (400, 640), (400, 640)]
    """

    def __init__(self, size: Tuple[int, int] = (640, 400), *, frames: int = 10, seed: int = 1, baseline: float = 50,
                 fx: Optional[float] = None, pack_mode: int = 2, bits: Optional[int] = None, packed: bool = False,
                 correction: Optional[int] = None, dual: bool = True, motion: str = "objects", texture: float = 1,
                 noise: float = 0, speckle: float = 0, dropouts: float = 0) -> None:
        self._frames = operator.index(frames)
        if self._frames < 0:
            raise ValueError(f"frames is {frames}; expected 0 or more")
        width, height = size
        self._native = _zvfilter.NativeCamera(width, height, seed, baseline, fx or 0, pack_mode, bits or 0, packed,
                                              correction, dual, motion, texture, noise, speckle, dropouts)

    @property
    def input(self) -> Input:
        """What its disparity frames are."""
        return Input(**self._native.input())

    def __len__(self) -> int:
        return self._frames

    @overload
    def __getitem__(self, index: int) -> CameraFrame: ...
    @overload
    def __getitem__(self, index: slice) -> List[CameraFrame]: ...

    def __getitem__(self, index: Union[int, slice]) -> Union[CameraFrame, List[CameraFrame]]:
        if isinstance(index, slice):
            return [self[number] for number in range(*index.indices(self._frames))]
        number = operator.index(index)
        number += self._frames if number < 0 else 0
        if not 0 <= number < self._frames:
            raise IndexError(f"there is no frame {index}; the camera has {self._frames}")
        return CameraFrame(*self._native.frame(number))
