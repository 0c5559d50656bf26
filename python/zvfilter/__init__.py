"""Filters for 16-bit depth images.

    import zvfilter
    depth = zvfilter.read("depth.png")
    zvfilter.write("filled.png", zvfilter.HoleFillingFilter(hole_filling_mode=1)(depth))

Frames are arrays of uint16, one a pixel, shape (height, width). 0 is no depth. Samples times `Input.value_scale` are millimetres.
"""

from . import batch, kernels
from ._zvfilter import chain_file_schema, level
from ._zvfilter import version as __version__
from .advice import Advice, advise
from .camera import CameraFrame, VirtualCamera
from .chain import Chain, Stage, Step
from .errors import Code, Error, FailedError, FileError, InvalidError
from .filters import *  # noqa: F403
from .filters import __all__ as _filters
from .images import read, write
from .inputs import Input, Output

__all__ = ["Advice", "CameraFrame", "Chain", "Code", "Error", "FailedError", "FileError", "Input", "InvalidError", "Output", "Stage", "Step",
           "VirtualCamera", "__version__", "advise", "batch", "chain_file_schema", "kernels", "level", "read", "write"]
__all__ += _filters
