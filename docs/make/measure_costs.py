#!/usr/bin/env python3
"""Measures what each filter costs and writes costs.json. The module zvfilter is to be on PYTHONPATH.

The figures are kept with the sources: a site made anywhere shows the same, and a loaded machine changes nothing.
"""

from __future__ import annotations

import functools
import json
from pathlib import Path
from typing import Dict, List, Tuple

import numpy as np

import examples
import zvfilter

SIZES = [(640, 400), (1280, 800)]
ROUNDS = 600


@functools.cache
def recorded(size: tuple, pack_mode: int) -> Tuple[zvfilter.Input, List[np.ndarray]]:
    camera = zvfilter.VirtualCamera(size, frames=3, pack_mode=pack_mode)
    return camera.input, [frame.disparity for frame in camera]


def filtering(name: str, values: Dict[str, float], size: tuple) -> float:
    """Milliseconds of a step on frames of the virtual camera; the quickest of its rounds, which other programs disturbed least."""
    kind, frames = recorded(size, 1 if name.startswith("OpenNI") else 2)
    if not name.endswith("DisparityTransform"):
        frames = list(zvfilter.DisparityTransform(input=kind).stream(frames))
        kind = zvfilter.Input(baseline=kind.baseline, fx=kind.fx, correction=8 if name.startswith("Hardware") else None)
    chain = zvfilter.Chain([f"{name}:{','.join(f'{k}={v}' for k, v in values.items())}"], input=kind)
    best = float("inf")
    for number in range(ROUNDS):
        chain(frames[number % len(frames)])
        best = min(best, chain.stages[0].milliseconds)
    return best


def main() -> None:
    filters: Dict[str, list] = {}
    for name, settings in examples.COSTS.items():
        filters[name] = []
        for values in [{}, *settings]:
            took = {f"{width}x{height}": filtering(name, values, (width, height)) for width, height in SIZES}
            filters[name].append({"values": values, "ms": {size: round(ms, 3) for size, ms in took.items()}})
            print(name, filters[name][-1])
    made = {"level": zvfilter.level(), "sizes": [f"{width}x{height}" for width, height in SIZES], "filters": filters}
    Path(__file__).with_name("costs.json").write_text(json.dumps(made, indent=1) + "\n")


if __name__ == "__main__":
    main()
