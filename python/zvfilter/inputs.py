"""What frames are: their units and the camera that made them."""

from __future__ import annotations

import dataclasses
import os
from typing import Any, Optional, Tuple, Union

from . import _zvfilter

Path = Union[str, "os.PathLike[str]"]


@dataclasses.dataclass(frozen=True, repr=False)
class Input:
    """What the frames of a sequence have in common. Their size is that of the arrays.

    Parameters
    ----------
    pixel_type : {"depth", "disparity", "linear"}
        Samples are depth, disparity codes, or depth that filters treat without geometry: thresholds do not grow with the
        distance.
    value_scale : float
        Millimetres a unit of depth, above 0.
    bits : int
        Of a sample, 1 to 16.
    packed : bool
        The low 4 bits of a disparity code are a confidence.
    baseline, fx : float
        Distance of the two viewpoints in millimetres, and focal length in pixels. Filters that compute with disparity need both.
    intrinsics : tuple of four floats
        ``fx, fy, cx, cy`` of a pinhole camera, pixels.
    correction : int
        The disparity correction that the camera applied, pixels; for `HardwareD2DCorrectionFilter`.
    zpd, zpps : float
        Of a camera with a projector: distance of the reference plane and pixel size on it, millimetres.
    unit : float
        Factor from the formula to depth units, 1 for millimetres.
    min_disparity, disparity_offset : float
        Smallest disparity searched, and what is added to every disparity, pixels.
    invalid_disparity : int
        The disparity code of an invalid pixel.
    integer_bits, code_bits, pack_mode : int
        Layout of a disparity code: bits before its point, all its bits, and the mode, 1 to 4.
    dual_camera : bool
        Two cameras, or one and a projector.

    What follows `baseline` has, where it is not given, the value of two cameras with that baseline.

    Raises
    ------
    InvalidError
        Naming the field that is wrong in its ``key``.

    Examples
    --------
    >>> Input(pixel_type="disparity", baseline=50, fx=448).integer_bits
    8
    """

    pixel_type: str = "depth"
    value_scale: float = 1.0
    bits: int = 16
    packed: bool = False
    baseline: Optional[float] = None
    fx: Optional[float] = None
    intrinsics: Optional[Tuple[float, float, float, float]] = None
    correction: Optional[int] = None
    zpd: Optional[float] = None
    zpps: Optional[float] = None
    unit: Optional[float] = None
    min_disparity: Optional[float] = None
    disparity_offset: Optional[float] = None
    invalid_disparity: Optional[int] = None
    integer_bits: Optional[int] = None
    code_bits: Optional[int] = None
    pack_mode: Optional[int] = None
    dual_camera: Optional[bool] = None

    def __post_init__(self) -> None:
        for name, value in _zvfilter.complete_input(self._fields()).items():
            object.__setattr__(self, name, value)

    def __repr__(self) -> str:
        told = [f"{field.name}={getattr(self, field.name)!r}" for field in dataclasses.fields(self)
                if getattr(self, field.name) != field.default]
        return f"Input({', '.join(told)})"

    def _fields(self) -> dict[str, Any]:
        return {field.name: getattr(self, field.name) for field in dataclasses.fields(self)}

    @classmethod
    def load(cls, path: Path) -> Input:
        """The input that a ``camera.json`` describes.

        Raises
        ------
        FileError, InvalidError
        """
        return cls(**_zvfilter.read_camera_file(os.fsencode(path)))


@dataclasses.dataclass(frozen=True)
class Output:
    """What a chain makes of frames: the shape of its arrays, and what their samples are."""

    shape: Tuple[int, int]
    input: Input
