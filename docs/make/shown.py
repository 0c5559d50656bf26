"""A filter at work on each of the scenes: its pictures, and what is said under them."""

from __future__ import annotations

from pathlib import Path
from typing import Dict, List, Optional, Tuple

import numpy as np

import examples
import pictures
import scenes
import zvfilter

#: The part of a frame that filters of single pixels are shown on.
CLOSE = np.s_[130:282, 290:530]


def rows(name: str, real: Optional[scenes.Scene]) -> List[Shown]:
    """The filter on the virtual camera as it is, with noise and, if it takes such frames, on those of a real camera."""
    virtual = [SHOWN.get(name, Shown)(name, noisy) for noisy in (False, True)]
    return virtual if real is None or not Real.takes(name, real.input) else [*virtual, Real(name, real)]


class Shown:
    """A filter at work on a scene, after the conversion to depth."""

    close = CLOSE
    colors: Dict[str, float] = {}
    pack_mode = 2
    before_it = ["DisparityTransform:"]
    _scenes: Dict[tuple, scenes.Scene] = {}

    def __init__(self, name: str, noisy: bool) -> None:
        self.name = name
        key = self.pack_mode, noisy
        if key not in self._scenes:
            scene = scenes.camera(seed=7 if noisy else 1, pack_mode=self.pack_mode)
            self._scenes[key] = scenes.with_noise(scene) if noisy else scene
        self.scene = self._scenes[key]
        self.results: Dict[str, tuple] = {}

    def chosen(self, values: Dict[str, float]) -> Dict[str, float]:
        return values

    def run(self, values: Dict[str, float]) -> tuple:
        """What the filter makes of the last two frames, millimetres."""
        values = self.chosen(values)
        key = str(values)
        if key not in self.results:
            self.results[key] = self.made([*self.before_it, f"{self.name}:{','.join(f'{k}={v}' for k, v in values.items())}"])
        return self.results[key]

    def made(self, steps: List[str]) -> tuple:
        chain = zvfilter.Chain(steps, input=self.scene.input)
        frames = [*chain.stream(self.scene.frames)][-2:]
        unit = chain.output_for(self.scene.frames[0].shape).input.value_scale
        return tuple(frame * unit for frame in frames)

    def before(self) -> np.ndarray:
        frame = self.scene.frames[-1]
        return zvfilter.Chain(self.before_it or ["DisparityTransform:"], input=self.scene.input)(frame)

    def caption(self, values: Dict[str, float]) -> str:
        earlier, depth = self.run(values)
        said = self.measured(depth)
        if self.name == "TemporalFilter":
            still = (earlier > 0) & (depth > 0) & (self.scene.truth == self.scene.truth_before) & (self.scene.truth > 0)
            said += f", flicker {np.median(np.abs(depth - earlier)[still]):.0f} mm"
        return said

    def measured(self, depth: np.ndarray) -> str:
        if depth.shape != self.scene.truth.shape:
            return f"{depth.shape[1]} x {depth.shape[0]}"
        known = (depth > 0) & (self.scene.truth > 0)
        error = np.abs(depth.astype(float) - self.scene.truth)[known]
        said = [f"{100 * (depth > 0).mean():.1f} % valid"]
        if error.size:
            far_off = error > 0.05 * self.scene.truth[known]
            said += [f"median error {np.median(error):.0f} mm", f"{100 * far_off.mean():.1f} % off by more than 5 %"]
        return ", ".join(said)

    def draw(self, folder: Path, parameter: str, values: Dict[str, float]) -> Tuple[str, int]:
        number_of = examples.EXAMPLES[self.name].get(parameter, [{}]).index(values)
        return self._write(folder, f"{self.name}_{parameter}_{number_of}_{self.scene.name}.png", self.run(values)[1])

    def draw_before(self, folder: Path) -> Tuple[str, int]:
        return self._write(folder, f"{self.name}_before_{self.scene.name}.png", self.before())

    def _write(self, folder: Path, file: str, depth: np.ndarray) -> Tuple[str, int]:
        """The file's name and the width of what it shows, pixels."""
        close = self.name in examples.CLOSE
        every = max(1, round(self.scene.frames[0].shape[1] / 320))
        pictures.write(folder / file, depth[self.close] if close else depth[::every, ::every], shaded=close, **self.colors)
        return file, depth.shape[1]


class _Converting(Shown):
    before_it: List[str] = []


class _OpenNi(_Converting):
    pack_mode = 1


class _Corrected(Shown):
    """Depth of a camera that converts by itself: what has no disparity gets the depth of the correction alone."""

    before_it: List[str] = []

    def __init__(self, name: str, noisy: bool) -> None:
        super().__init__(name, noisy)
        kind = self.scene.input
        empty = round(kind.baseline * kind.fx / self.CORRECTION)
        converted = zvfilter.DisparityTransform(input=kind)
        self.scene = scenes.dataclasses.replace(
            self.scene, input=zvfilter.Input(baseline=kind.baseline, fx=kind.fx, correction=self.CORRECTION),
            frames=[np.where(depth > 0, depth, empty).astype(np.uint16) for depth in converted.stream(self.scene.frames)])

    CORRECTION = 8

    def before(self) -> np.ndarray:
        return self.scene.frames[-1]


class Real(Shown):
    """A filter at work on frames whose truth nobody knows."""

    @staticmethod
    def takes(name: str, kind: zvfilter.Input) -> bool:
        disparity = kind.pixel_type == "disparity"
        if name == "HardwareD2DCorrectionFilter":
            return kind.correction is not None and not disparity
        if name == "OpenNIDisparityTransform":
            return disparity and kind.pack_mode == 1
        return disparity or name != "DisparityTransform"

    def __init__(self, name: str, scene: scenes.Scene) -> None:
        self.name, self.scene, self.results = name, scene, {}
        # Without values it keeps every depth, and hands depth frames through.
        self.before_it = [] if name.endswith("DisparityTransform") else ["DisparityTransform"]
        self.earlier, self.frame = self.made(["DisparityTransform"])
        nearest, farthest = np.percentile(self.frame[self.frame > 0], (1, 99))
        self.colors = {"nearest": nearest, "farthest": max(farthest, 1.01 * nearest)}
        top, left = (max(0, (side - close) // 2) for side, close in zip(self.frame.shape, (152, 240)))
        self.close = np.s_[top:top + 152, left:left + 240]

    def chosen(self, values: Dict[str, float]) -> Dict[str, float]:
        """Without sizes that suit the virtual camera's frames only: chains work them out."""
        return {key: value for key, value in values.items() if self.name != "DepthResize" or not key.startswith("dst_")}

    def before(self) -> np.ndarray:
        return self.frame

    def caption(self, values: Dict[str, float]) -> str:
        earlier, depth = self.run(values)
        if depth.shape != self.frame.shape:
            return f"{depth.shape[1]} x {depth.shape[0]}"
        said = f"{100 * (depth > 0).mean():.1f} % valid, {100 * (depth != self.frame).mean():.1f} % changed"
        return said + self._flicker(earlier, depth)

    def measured(self, depth: np.ndarray) -> str:
        return f"{100 * (depth > 0).mean():.1f} % valid" + self._flicker(self.earlier, depth)

    def _flicker(self, earlier: np.ndarray, depth: np.ndarray) -> str:
        if self.name != "TemporalFilter":
            return ""
        both = (earlier > 0) & (depth > 0)
        return f", median change from the frame before {np.median(np.abs(depth.astype(float) - earlier)[both]):.1f} mm"


SHOWN = {"DisparityTransform": _Converting, "OpenNIDisparityTransform": _OpenNi, "HardwareD2DCorrectionFilter": _Corrected}
