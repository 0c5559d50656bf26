#!/usr/bin/env python3
"""Measures what each filter costs and writes costs.json. The module zvfilter is to be on PYTHONPATH.

The figures are kept with the sources: a site made anywhere shows the same, and a loaded machine changes nothing.
"""

from __future__ import annotations

import json
import time
from pathlib import Path
from typing import Dict, List

import numpy as np

import examples
import zvfilter

SIZES = [(640, 400), (1280, 800)]
ROUNDS = 60


def copying(frame: np.ndarray) -> float:
    """Milliseconds of a copy to memory that is there already."""
    target, best = np.empty_like(frame), float("inf")
    for _ in range(ROUNDS):
        start = time.perf_counter()
        np.copyto(target, frame)
        best = min(best, time.perf_counter() - start)
    return best * 1000


def filtering(name: str, values: Dict[str, float], size: tuple) -> float:
    """Milliseconds of a step on frames of the virtual camera; the quickest of its rounds, which other programs disturbed least."""
    camera = zvfilter.VirtualCamera(size, frames=3, pack_mode=1 if name.startswith("OpenNI") else 2)
    kind = camera.input
    frames: List[np.ndarray] = [frame.disparity for frame in camera]
    if not name.endswith("DisparityTransform") and name != "DisparityTransform":
        frames = list(zvfilter.DisparityTransform(input=kind).stream(frames))
        kind = zvfilter.Input(baseline=kind.baseline, fx=kind.fx, correction=8 if name.startswith("Hardware") else None)
    chain = zvfilter.Chain([f"{name}:{','.join(f'{k}={v}' for k, v in values.items())}"], input=kind)
    best = float("inf")
    for number in range(ROUNDS):
        chain(frames[number % len(frames)])
        best = min(best, chain.stages[0].milliseconds)
    return best


def main() -> None:
    copies = {f"{width}x{height}": copying(np.ones((height, width), np.uint16)) for width, height in SIZES}
    filters: Dict[str, list] = {}
    for name, settings in examples.COSTS.items():
        filters[name] = []
        for values in [{}, *settings]:
            took = {f"{width}x{height}": filtering(name, values, (width, height)) for width, height in SIZES}
            filters[name].append({"values": values, "ms": {size: round(ms, 3) for size, ms in took.items()},
                                  "copies": round(took["640x400"] / copies["640x400"], 1)})
            print(name, filters[name][-1])
    made = {"level": zvfilter.level(), "sizes": list(copies), "copying": copies, "filters": filters}
    Path(__file__).with_name("costs.json").write_text(json.dumps(made, indent=1) + "\n")


if __name__ == "__main__":
    main()
