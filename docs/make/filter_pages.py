"""The page of each filter: what the program says of it, and what it does to a frame at three values of each parameter."""

from __future__ import annotations

import json
import subprocess
from pathlib import Path
from typing import Dict, Iterator, List, Tuple

import numpy as np

import examples
import pictures
import scenes
import zvfilter

#: The part of a frame that filters of single pixels are shown on.
CLOSE = np.s_[130:282, 290:530]
COSTS = json.loads((Path(__file__).parent / "costs.json").read_text())


def make(tool: str, folder: Path) -> None:
    listed = json.loads(subprocess.run([tool, "list", "--json"], check=True, capture_output=True, text=True).stdout)
    shown = {filter["name"] for filter in listed}
    if shown != set(examples.EXAMPLES):
        raise SystemExit(f"docs/make/examples.py has other filters than the tool: {shown ^ set(examples.EXAMPLES)}")
    folder.mkdir(parents=True, exist_ok=True)
    for filter in listed:
        missing = {parameter["name"] for parameter in filter["parameters"]} ^ set(examples.EXAMPLES[filter["name"]])
        if missing:
            raise SystemExit(f"docs/make/examples.py: {filter['name']} has other parameters: {missing}")
        text = "\n".join(_page(filter, folder / "pictures"))
        page = folder / f"{filter['name']}.md"
        if not page.exists() or page.read_text() != text:
            page.write_text(text)


def sentence(text: str) -> str:
    return text[0].upper() + text[1:] + ("" if text.endswith(".") else ".")


def number(value: float) -> str:
    return f"{value:g}"


def values_text(values: Dict[str, float]) -> str:
    return ", ".join(f"{key}={number(value)}" for key, value in values.items())


def _page(filter: dict, folder: Path) -> Iterator[str]:
    name = filter["name"]
    yield f"# {name}\n\n{sentence(filter['summary'])}\n"
    yield f"**Use it.** {filter['use']}\n\n**Mind.** {filter['avoid']}\n\n**Without values.** {filter['asMade']}\n"
    if filter["parameters"]:
        yield "| parameter | from | to | step | default | unit |\n|---|---:|---:|---:|---:|---|"
        for p in filter["parameters"]:
            yield (f"| [`{p['name']}`](#{p['name'].lower()}) | {number(p['min'])} | {number(p['max'])} | {number(p['step'])} "
                   f"| {number(p['default'])} | {p.get('unit', '')} |")
        yield ""
    yield from _cost(name)
    yield "[What the pictures show](index.md#the-pictures) and how they are made.\n"
    shown = [SHOWN.get(name, _Shown)(name, noisy) for noisy in (False, True)]
    if not filter["parameters"]:
        yield "## Before and after\n"
        for shown_as in shown:
            yield f"**{sentence(shown_as.scene.title).rstrip('.')}**\n"
            yield from _grid([f"before: {shown_as.measured(shown_as.before())}", f"after: {shown_as.caption({})}"],
                             [shown_as.draw_before(folder), shown_as.draw(folder, "after", {})])
    for parameter in filter["parameters"]:
        yield f"## {parameter['name']}\n\n{parameter['meaning']}\n"
        for choice in parameter.get("choices", []):
            yield f"- {choice['value']}, {choice['name']}: {choice['meaning']}"
        if parameter.get("direction"):
            yield sentence(parameter["direction"])
        yield ""
        yield from _pictures(shown, parameter["name"], examples.EXAMPLES[name][parameter["name"]], folder)


def _cost(name: str) -> Iterator[str]:
    yield "## What it costs\n"
    sizes = COSTS["sizes"]
    yield "| values | " + " | ".join(f"ms at {size.replace('x', ' x ')}" for size in sizes) + " |"
    yield "|---|" + "---:|" * len(sizes)
    for row in COSTS["filters"][name]:
        times = " | ".join(f"{row['ms'][size]:.3f}" for size in sizes)
        yield f"| {values_text(row['values']) or 'defaults'} | {times} |"
    yield f"\nOne core, level {COSTS['level']}. [How that was measured](index.md#the-times).\n"


def _pictures(shown: List["_Shown"], parameter: str, settings: List[dict], folder: Path) -> Iterator[str]:
    with_it = {key: value for key, value in settings[0].items() if all(each.get(key) == value for each in settings)}
    with_it.pop(parameter, None)
    if with_it:
        yield f"Here with {values_text(with_it)}.\n"
    for shown_as in shown:
        captions, drawn = [f"before: {shown_as.measured(shown_as.before())}"], [shown_as.draw_before(folder)]
        for values in settings:
            told = {key: value for key, value in values.items() if key not in with_it}
            captions.append(f"{values_text(told)}: {shown_as.caption(values)}")
            drawn.append(shown_as.draw(folder, parameter, values))
        yield f"**{sentence(shown_as.scene.title).rstrip('.')}**\n"
        yield from _grid(captions, drawn)


def _grid(captions: List[str], drawn: List[Tuple[str, int]]) -> Iterator[str]:
    widest = max(width for _, width in drawn)
    yield "::::{container} values"
    for caption, (file, width) in zip(captions, drawn):
        yield f":::{{figure}} pictures/{file}\n:alt: \"{caption}\"\n:width: {100 * width // widest}%\n\n{caption}\n:::"
    yield "::::\n"


class _Shown:
    """A filter at work on a scene, after the conversion to depth."""

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

    def run(self, values: Dict[str, float]) -> tuple:
        """What the filter makes of the last two frames, millimetres."""
        key = values_text(values)
        if key not in self.results:
            step = f"{self.name}:{','.join(f'{k}={v}' for k, v in values.items())}"
            chain = zvfilter.Chain([*self.before_it, step], input=self.scene.input)
            made = [*chain.stream(self.scene.frames)][-2:]
            unit = chain.output_for(self.scene.frames[0].shape).input.value_scale
            self.results[key] = tuple(frame * unit for frame in made)
        return self.results[key]

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
        pictures.write(folder / file, depth[CLOSE] if close else depth[::2, ::2], shaded=close)
        return file, depth.shape[1]


class _Converting(_Shown):
    before_it: List[str] = []


class _OpenNi(_Converting):
    pack_mode = 1


class _Corrected(_Shown):
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


SHOWN = {"DisparityTransform": _Converting, "OpenNIDisparityTransform": _OpenNi, "HardwareD2DCorrectionFilter": _Corrected}
