"""Depth by disparity code: the table, and the quotient that may take its place."""

from __future__ import annotations

from pathlib import Path
from typing import List, Tuple

import numpy as np

import zvfilter
from svg import COLORS, Drawing

#: Baselines in millimetres and focal lengths in pixels.
CAMERAS = [(50, 448), (55, 611.3), (50.3, 449.7), (75.02, 633.1), (95.11, 700.7), (120.4, 912.9), (40.7, 379.3), (62.9, 521.7)]
NEIGHBOURS = 12
CODES = 1 << 16


def table_of(baseline: float, fx: float) -> np.ndarray:
    """The filter's table: the first frame is converted with it."""
    transform = zvfilter.Chain(["DisparityTransform"], input=zvfilter.Input("disparity", baseline=baseline, fx=fx))
    return transform(np.arange(CODES, dtype=np.uint16).reshape(256, 256)).reshape(-1)


def wrong_codes(baseline: float, fx: float) -> List[int]:
    """For the numerator as 32-bit float and its neighbours, in order: how many codes the quotient gets wrong."""
    kind = zvfilter.Input("disparity", baseline=baseline, fx=fx)
    table = table_of(baseline, fx)
    codes = np.flatnonzero(table)
    fraction = kind.code_bits - kind.integer_bits
    exact = np.float64(np.float32(baseline)) * fx * kind.unit * 2.0**fraction
    numerator = np.float32(exact)
    for _ in range(NEIGHBOURS):
        numerator = np.nextafter(numerator, np.float32(0))
    wrong = []
    for _ in range(2 * NEIGHBOURS + 1):
        wrong.append(int(((numerator / codes.astype(np.float32)).astype(np.uint16) != table[codes]).sum()))
        numerator = np.nextafter(numerator, np.float32(np.inf))
    return wrong


def draw_stairs(path: Path) -> None:
    table = table_of(*CAMERAS[0])
    drawing = Drawing(676, 310)
    parts = [(4, np.arange(0, CODES, 64), "all codes"), (348, np.arange(8192, 8226), "34 of them")]
    for left, codes, name in parts:
        depths = table[codes].astype(float)
        top = min(depths.max(), 6000)
        at = [(left + 40 + 270 * number / (len(codes) - 1), 262 - 230 * min(depth, top) / top if name == "all codes" else
               262 - 230 * (depth - depths.min()) / max(1, np.ptp(depths))) for number, depth in enumerate(depths)]
        drawing.rectangle(left + 40, 30, 270, 234, "#f7f7f7", "#cccccc")
        if name == "all codes":
            drawing.line([point for point, depth in zip(at, depths) if 0 < depth <= top], "#1b6ca8", 2)
        else:
            exact = [CAMERAS[0][0] * CAMERAS[0][1] * 256 / code for code in codes]
            drawing.line([(x, 262 - 230 * (depth - depths.min()) / np.ptp(depths)) for (x, _), depth in zip(at, exact)], "#999999", 1.5)
            for x, y in at:
                drawing.circle(x, y, 3, "#1b6ca8", "none")
        low, high = (0, top) if name == "all codes" else (depths.min(), depths.max())
        drawing.text(left + 36, 40, f"{high:.0f}", "end", 12)
        drawing.text(left + 36, 264, f"{low:.0f}", "end", 12)
        drawing.text(left + 40, 280, str(codes[0]), "start", 12)
        drawing.text(left + 310, 280, str(codes[-1]), "end", 12)
        drawing.text(left + 175, 280, "code", size=12)
        drawing.text(left + 40, 18, f"depth in mm, {name}", "start")
    drawing.text(672, 302, "grey: the quotient; blue: the table, which cuts to whole millimetres", "end", 11, "#555555")
    drawing.write(path)


def draw_neighbours(path: Path) -> None:
    left, cell = 150, 20
    drawing = Drawing(left + (2 * NEIGHBOURS + 1) * cell + 8, 62 + len(CAMERAS) * 28)
    drawing.text(left + NEIGHBOURS * cell + cell / 2, 16, "the rounded numerator and its neighbours")
    for place in range(-NEIGHBOURS, NEIGHBOURS + 1, 4):
        drawing.text(left + (place + NEIGHBOURS) * cell + cell / 2, 34, f"{place:+d}" if place else "0", size=11)
    for row, (baseline, fx) in enumerate(CAMERAS):
        wrong = wrong_codes(baseline, fx)
        top = 42 + row * 28
        drawing.text(left - 8, top + 16, f"{baseline:g} mm, {fx:g} px", "end")
        chosen = _first_that_fits(wrong)
        for place, count in enumerate(wrong):
            x = left + place * cell
            drawing.rectangle(x, top, cell - 1, 22, COLORS[2] if count == 0 else "#f2f2f2", "#333333" if place == chosen else "none", 2)
            drawing.text(x + cell / 2 - 0.5, top + 15, str(count) if count < 100 else "…", size=10)
    drawing.write(path)


def _first_that_fits(wrong: List[int]) -> int:
    for distance in range(NEIGHBOURS):
        for place in (NEIGHBOURS + distance, NEIGHBOURS - distance):
            if wrong[place] == 0:
                return place
    return -1


def make(folder: Path) -> None:
    draw_stairs(folder / "figures/stairs.svg")
    draw_neighbours(folder / "figures/neighbours.svg")
