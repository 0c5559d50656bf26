"""What the filters are shown on: the virtual camera as it is, with more noise than it has, and frames of your own camera."""

from __future__ import annotations

import dataclasses
from pathlib import Path
from typing import List, Optional

import numpy as np

import zvfilter
from zvfilter import batch

SIZE = (640, 400)
FRAMES = 8


@dataclasses.dataclass
class Scene:
    """Frames of a sequence and, where it is known, the true depth of the last, millimetres."""

    name: str
    title: str
    input: zvfilter.Input
    frames: List[np.ndarray]
    truth: Optional[np.ndarray] = None
    truth_before: Optional[np.ndarray] = None  # of the frame before the last


def camera(**options: object) -> Scene:
    source = zvfilter.VirtualCamera(SIZE, frames=FRAMES, **options)
    frames = [frame.disparity for frame in source]
    return Scene("camera", "virtual camera", source.input, frames, source[-1].truth, source[-2].truth)


def recorded(folder: str) -> Scene:
    """The last frames in a folder, as its camera.json says or else depth in millimetres of the tool's nominal camera."""
    try:
        frames = [zvfilter.read(file) for file in batch.frame_files(folder)[-FRAMES:]]
        described = Path(folder, "camera.json")
        kind = zvfilter.Input.load(described) if described.exists() else zvfilter.Input()
        if len(frames) < 2 or len({frame.shape for frame in frames}) > 1:
            raise ValueError(f"expected two or more images of one size; its last have {[frame.shape[::-1] for frame in frames]}")
        if kind.baseline is None:
            kind = dataclasses.replace(kind, baseline=50, fx=0.7 * frames[0].shape[1])
        if not zvfilter.Chain(["DisparityTransform"], input=kind)(frames[-1]).any():
            raise ValueError("expected depth; its last image has no valid pixel")
    except (zvfilter.Error, OSError, ValueError) as problem:
        raise SystemExit(f"no pictures can be made of the frames in {folder}: {problem}") from problem
    return Scene("real", "real frame", kind, frames)


def with_noise(scene: Scene, seed: int = 11) -> Scene:
    """A third of a pixel of noise, 250 specks of wrong disparity and 120 dropouts a frame."""
    random = np.random.default_rng(seed)
    # Codes of mode 1 fall by one for two steps of disparity.
    pixel = 1 << (scene.input.code_bits - scene.input.integer_bits - (scene.input.pack_mode == 1))
    return dataclasses.replace(scene, name="noisy", title="virtual camera with noise",
                               frames=[_spoilt(frame, pixel, scene.input, random) for frame in scene.frames])


def _spoilt(frame: np.ndarray, pixel: int, kind: zvfilter.Input, random: np.random.Generator) -> np.ndarray:
    invalid = frame == kind.invalid_disparity
    codes = frame + random.normal(0, pixel / 3, frame.shape)
    for _ in range(250):
        codes[_blob(frame.shape, random.integers(1, 5), random)] += random.choice([-1, 1]) * random.uniform(3, 12) * pixel
    codes = np.clip(codes.round(), 1, (1 << kind.code_bits) - 2)
    for _ in range(120):
        invalid[_blob(frame.shape, random.integers(1, 6), random)] = True
    return np.where(invalid, kind.invalid_disparity, codes).astype(np.uint16)


def _blob(shape: tuple, radius: int, random: np.random.Generator) -> tuple:
    y, x = (random.integers(0, side) for side in shape)
    rows, columns = np.mgrid[-radius:radius + 1, -radius:radius + 1]
    inside = rows**2 + (columns * random.uniform(0.6, 1.6))**2 <= radius**2
    rows, columns = rows[inside] + y, columns[inside] + x
    kept = (rows >= 0) & (rows < shape[0]) & (columns >= 0) & (columns < shape[1])
    return rows[kept], columns[kept]
