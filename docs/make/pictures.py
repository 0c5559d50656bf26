"""Depth as coloured pictures and as figures."""

from __future__ import annotations

from pathlib import Path

import matplotlib
import numpy as np
from PIL import Image

_COLORS = (matplotlib.colormaps["turbo"](np.linspace(1, 0, 256))[:, :3] * 255).round()
_BASELINE_TIMES_FX = 22400.0  # of the shading: a pixel of disparity at 1 m is 22.4


def write(path: Path, depth: np.ndarray, shaded: bool, nearest: float = 500, farthest: float = 5000) -> None:
    """Writes depth in millimetres in colours from red, near, to blue, far; holes are black. Near steps weigh as much as far ones.

    Shaded: lit from the upper left, as relief, so that noise can be seen.
    """
    inverse = 1 / np.clip(depth.astype(float), nearest, farthest)
    scaled = (1 / nearest - inverse) / (1 / nearest - 1 / farthest)
    colors = _COLORS[(scaled * 255).round().astype(int)]
    if shaded:
        disparity = inverse * _BASELINE_TIMES_FX
        slope = np.zeros_like(disparity)
        slope[1:, 1:] = 2 * disparity[1:, 1:] - disparity[:-1, 1:] - disparity[1:, :-1]
        colors = colors * (1 + np.clip(1.2 * slope, -0.7, 0.4))[..., None]
    colors[depth == 0] = 0
    image = Image.fromarray(np.clip(colors, 0, 255).astype(np.uint8)).quantize(256, dither=Image.Dither.NONE)
    path.parent.mkdir(parents=True, exist_ok=True)
    image.save(path, optimize=True)
