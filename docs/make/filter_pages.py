"""The page of each filter: what the program says of it, and what it does to a frame at three values of each parameter."""

from __future__ import annotations

import json
import subprocess
from pathlib import Path
from typing import Dict, Iterator, List, Optional, Tuple

import examples
import scenes
import shown

COSTS = json.loads((Path(__file__).parent / "costs.json").read_text())


def make(tool: str, folder: Path, real: Optional[scenes.Scene]) -> None:
    listed = json.loads(subprocess.run([tool, "list", "--json"], check=True, capture_output=True, text=True).stdout)
    names = {filter["name"] for filter in listed}
    if names != set(examples.EXAMPLES):
        raise SystemExit(f"docs/make/examples.py has other filters than the tool: {names ^ set(examples.EXAMPLES)}")
    folder.mkdir(parents=True, exist_ok=True)
    for filter in listed:
        missing = {parameter["name"] for parameter in filter["parameters"]} ^ set(examples.EXAMPLES[filter["name"]])
        if missing:
            raise SystemExit(f"docs/make/examples.py: {filter['name']} has other parameters: {missing}")
        text = "\n".join(_page(filter, folder / "pictures", real))
        page = folder / f"{filter['name']}.md"
        if not page.exists() or page.read_text() != text:
            page.write_text(text)


def sentence(text: str) -> str:
    return text[0].upper() + text[1:] + ("" if text.endswith(".") else ".")


def number(value: float) -> str:
    return f"{value:g}"


def values_text(values: Dict[str, float]) -> str:
    return ", ".join(f"{key}={number(value)}" for key, value in values.items())


def _page(filter: dict, folder: Path, real: Optional[scenes.Scene]) -> Iterator[str]:
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
    rows = shown.rows(name, real)
    if not filter["parameters"]:
        yield "## Before and after\n"
        for row in rows:
            yield f"**{sentence(row.scene.title).rstrip('.')}**\n"
            yield from _grid([f"before: {row.measured(row.before())}", f"after: {row.caption({})}"],
                             [row.draw_before(folder), row.draw(folder, "after", {})])
    for parameter in filter["parameters"]:
        yield f"## {parameter['name']}\n\n{parameter['meaning']}\n"
        for choice in parameter.get("choices", []):
            yield f"- {choice['value']}, {choice['name']}: {choice['meaning']}"
        if parameter.get("direction"):
            yield sentence(parameter["direction"])
        yield ""
        yield from _pictures(rows, parameter["name"], examples.EXAMPLES[name][parameter["name"]], folder)


def _cost(name: str) -> Iterator[str]:
    yield "## What it costs\n"
    sizes = COSTS["sizes"]
    yield "| values | " + " | ".join(f"ms at {size.replace('x', ' x ')}" for size in sizes) + " |"
    yield "|---|" + "---:|" * len(sizes)
    for row in COSTS["filters"][name]:
        times = " | ".join(f"{row['ms'][size]:.3f}" for size in sizes)
        yield f"| {values_text(row['values']) or 'defaults'} | {times} |"
    yield f"\nOne core, level {COSTS['level']}. [How that was measured](index.md#the-times).\n"


def _pictures(rows: List[shown.Shown], parameter: str, settings: List[dict], folder: Path) -> Iterator[str]:
    with_it = {key: value for key, value in settings[0].items() if all(each.get(key) == value for each in settings)}
    with_it.pop(parameter, None)
    if with_it:
        yield f"Here with {values_text(with_it)}.\n"
    for row in rows:
        captions, drawn = [f"before: {row.measured(row.before())}"], [row.draw_before(folder)]
        for values in settings:
            told = {key: value for key, value in row.chosen(values).items() if key not in with_it}
            captions.append(f"{values_text(told) or 'defaults'}: {row.caption(values)}")
            drawn.append(row.draw(folder, parameter, values))
        yield f"**{sentence(row.scene.title).rstrip('.')}**\n"
        yield from _grid(captions, drawn)


def _grid(captions: List[str], drawn: List[Tuple[str, int]]) -> Iterator[str]:
    widest = max(width for _, width in drawn)
    yield "::::{container} values"
    for caption, (file, width) in zip(captions, drawn):
        yield f":::{{figure}} pictures/{file}\n:alt: \"{caption}\"\n:width: {100 * width // widest}%\n\n{caption}\n:::"
    yield "::::\n"
