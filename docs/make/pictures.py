"""Depth as coloured pictures and as figures."""

from __future__ import annotations

from pathlib import Path

import matplotlib
import numpy as np
from PIL import Image

_HOLE = 255
_COLORS = (matplotlib.colormaps["turbo"](np.linspace(1, 0, _HOLE))[:, :3] * 255).round().astype(np.uint8)
_PALETTE = [*_COLORS.reshape(-1), 0, 0, 0]


def write(path: Path, depth: np.ndarray, nearest: float = 500, farthest: float = 5000) -> None:
    """Writes depth in millimetres in colours from red, near, to blue, far; holes are black. Near steps weigh as much as far ones."""
    inverse = 1 / np.clip(depth.astype(float), nearest, farthest)
    scaled = (1 / nearest - inverse) / (1 / nearest - 1 / farthest)
    image = Image.fromarray(np.where(depth > 0, (scaled * (_HOLE - 1)).round(), _HOLE).astype(np.uint8), "P")
    image.putpalette(_PALETTE)
    path.parent.mkdir(parents=True, exist_ok=True)
    image.save(path, optimize=True)
