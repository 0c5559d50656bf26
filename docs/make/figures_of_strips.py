"""Why smoothing waits for its neighbour, and how rows become lanes."""

from __future__ import annotations

from pathlib import Path
from typing import List

import numpy as np

import scenes
import zvfilter
from svg import COLORS, Drawing

LENGTH, DIFFERENCE, ALPHA = 84, 60, 0.4
GROUP = 8


def one_way(row: np.ndarray) -> np.ndarray:
    """A pass from left to right: each pixel blends with the result to its left."""
    made = row.astype(np.float32)
    for x in range(1, len(row)):
        if made[x] > 0 and made[x - 1] > 0 and abs(made[x] - made[x - 1]) <= DIFFERENCE:
            made[x] = np.rint(np.float32(1 - ALPHA) * made[x - 1] + np.float32(ALPHA) * made[x])
    return made


def depth_frame() -> np.ndarray:
    scene = scenes.camera()
    return zvfilter.DisparityTransform(input=scene.input)(scene.frames[0])


def passes(depth: np.ndarray) -> List[np.ndarray]:
    """A row with a few edges: as it is, after the way to the right, after the way back."""
    best, found = -1.0, None
    for y in range(0, depth.shape[0], 8):
        for x in range(80, depth.shape[1] - LENGTH, 20):
            row = depth[y, x:x + LENGTH].astype(int)
            steps = np.abs(np.diff(row))
            worth = min(4, (steps > 250).sum()) + 0.2 * ((steps > 3) & (steps < 50)).sum() if (row > 0).all() and np.ptp(row) < 1500 else -1
            if worth > best:
                best, found = worth, depth[y, x:x + LENGTH]
    if found is None:
        raise SystemExit("no row of the frame is worth a picture")
    there = one_way(found)
    back = one_way(there[::-1])[::-1]
    # The kernel works on groups of eight rows, and stops one pixel before the end on its way to the right.
    there[-1] = found[-1]
    back = one_way(there[::-1])[::-1]
    by_kernel = zvfilter.kernels.spatial(np.repeat(found[None], GROUP, axis=0), disp_diff=DIFFERENCE, alpha=ALPHA, vertical=False)[0]
    if not np.array_equal(by_kernel, back.astype(np.uint16)):
        raise SystemExit("the figure of the passes doesn't show what the kernel does")
    return [found, there, back]


def draw_passes(rows: List[np.ndarray], path: Path) -> None:
    drawing = Drawing(676, 330)
    low, high = (edge(np.concatenate(rows)) for edge in (np.min, np.max))
    names = ["as it comes", "after the way to the right", "after the way back"]
    for number, (row, name, color) in enumerate(zip(rows, names, ("#999999", "#d9822b", "#1b6ca8"))):
        points = [(20 + x * 640 / (LENGTH - 1), 300 - 240 * (value - low) / (high - low)) for x, value in enumerate(row)]
        drawing.line(points, color, 1.5 if number == 0 else 2)
        drawing.line([(20 + number * 215, 20), (44 + number * 215, 20)], color, 3)
        drawing.text(50 + number * 215, 24, name, "start")
    drawing.text(20, 320, f"{LENGTH} pixels of a row, {low:.0f} to {high:.0f} mm", "start", 12, "#555555")
    drawing.write(path)


def _block(depth: np.ndarray) -> np.ndarray:
    """Eight rows of eight pixels, none a hole, not all alike."""
    for y in range(depth.shape[0] // 3, depth.shape[0] - GROUP, GROUP):
        for x in range(depth.shape[1] // 2, depth.shape[1] - GROUP, GROUP):
            block = depth[y:y + GROUP, x:x + GROUP]
            if (block > 0).all() and 60 < np.ptp(block) < 400:
                return block
    raise SystemExit("no block of the frame is worth a picture")


def draw_transposition(depth: np.ndarray, path: Path) -> None:
    block = _block(depth)
    cell, right = 38, 370
    drawing = Drawing(680, 372)
    drawing.text(4, 16, "in memory: a vector is a piece of a row", "start")
    drawing.text(right, 16, "transposed: a vector is a column", "start")
    for y in range(GROUP):
        for x in range(GROUP):
            for left, row, column in ((4, y, x), (right, x, y)):
                drawing.rectangle(left + column * cell, 28 + row * cell, cell, cell, COLORS[y], "white")
                drawing.text(left + column * cell + cell / 2, 28 + row * cell + 24, str(block[y, x]), size=11)
    drawing.line([(4 + GROUP * cell + 10, 28 + 4 * cell), (right - 10, 28 + 4 * cell)], "black", 3, head=True)
    bottom = 28 + GROUP * cell + 16
    drawing.line([(10, bottom), (4 + GROUP * cell - 6, bottom)], "#c4271b", 2, head=True)
    drawing.text(4, bottom + 18, "the way a row waits: from lane to lane", "start", 12, "#c4271b")
    drawing.line([(right + GROUP * cell - 2, 32), (right + GROUP * cell - 2, 24 + GROUP * cell)], "#1b6ca8", 2, head=True)
    drawing.text(right, bottom + 18, "from vector to vector, eight rows at once", "start", 12, "#1b6ca8")
    drawing.write(path)


def draw_order(path: Path) -> None:
    drawing = Drawing(676, 300)
    strips, height, width = 4, 44, 150
    drawing.text(4, 16, "the frame, in strips of rows", "start")
    steps = []
    for strip in range(strips):
        steps += [(strip, "right", COLORS[1]), (strip, "left", COLORS[0]), (strip, "down", COLORS[2])]
    steps.append((None, "up", COLORS[4]))
    step = 470 / len(steps)
    for strip in range(strips):
        drawing.rectangle(4, 28 + strip * height, width, height - 3, "#eeeeee", "#999999")
        drawing.text(4 + width / 2, 28 + strip * height + 25, f"strip {strip + 1}")
    drawing.text(190, 16, "one after the other", "start")
    for number, (strip, name, color) in enumerate(steps):
        top, tall = (28, strips * height - 3) if strip is None else (28 + strip * height, height - 3)
        drawing.rectangle(190 + number * step, top, step - 2, tall, color)
        drawing.text(190 + number * step + step / 2 - 1, top + tall / 2 + 4, name, size=11)
    drawing.line([(190, 40 + strips * height), (662, 40 + strips * height)], "black", 1.5, head=True)
    drawing.text(662, 56 + strips * height, "time", "end")
    notes = ["right and left: the horizontal passes of a strip, whose columns wait in between, on the stack if they fit",
             "down: the strip's rows are still in the cache, so the vertical pass takes them at once",
             "up: needs the last row first, so it goes over the frame once more"]
    for number, note in enumerate(notes):
        drawing.text(4, 248 + number * 20, note, "start", 12)
    drawing.write(path)


def make(folder: Path) -> None:
    depth = depth_frame()
    draw_passes(passes(depth), folder / "figures/passes.svg")
    draw_transposition(depth, folder / "figures/transposition.svg")
    draw_order(folder / "figures/order.svg")
