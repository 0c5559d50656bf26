"""Drawings as SVG: a few shapes on white, so that they read on a dark page too."""

from __future__ import annotations

from pathlib import Path
from typing import Iterable, List, Tuple
from xml.sax.saxutils import escape

#: Colours that differ for readers with colour-blindness too; pale enough for black text.
COLORS = ["#9ecae9", "#ffbf79", "#8cd17d", "#f1ce63", "#ff9d9a", "#d4a6c8", "#bab0ac", "#86bcb6", "#d7b5a6", "#fabfd2"]


class Drawing:
    def __init__(self, width: float, height: float) -> None:
        self.parts: List[str] = [
            f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width:g} {height:g}" width="{width:g}" height="{height:g}" '
            'font-family="sans-serif" font-size="13">',
            '<defs><marker id="head" viewBox="0 0 8 8" refX="7" refY="4" markerWidth="9" markerHeight="9" markerUnits="userSpaceOnUse" orient="auto">'
            '<path d="M0 0 8 4 0 8z" fill="context-stroke"/></marker></defs>',
            f'<rect width="{width:g}" height="{height:g}" fill="white"/>']

    def rectangle(self, x: float, y: float, width: float, height: float, fill: str, stroke: str = "none", thick: float = 1) -> None:
        self.parts.append(f'<rect x="{x:g}" y="{y:g}" width="{width:g}" height="{height:g}" fill="{fill}" stroke="{stroke}" '
                          f'stroke-width="{thick:g}"/>')

    def text(self, x: float, y: float, text: str, anchor: str = "middle", size: float = 13, color: str = "black") -> None:
        self.parts.append(f'<text x="{x:g}" y="{y:g}" text-anchor="{anchor}" font-size="{size:g}" fill="{color}">{escape(text)}</text>')

    def line(self, points: Iterable[Tuple[float, float]], color: str = "black", thick: float = 1, head: bool = False,
             dashes: str = "") -> None:
        path = " ".join(f"{x:g},{y:g}" for x, y in points)
        extra = (' marker-end="url(#head)"' if head else "") + (f' stroke-dasharray="{dashes}"' if dashes else "")
        self.parts.append(f'<polyline points="{path}" fill="none" stroke="{color}" stroke-width="{thick:g}"{extra}/>')

    def circle(self, x: float, y: float, radius: float, fill: str, stroke: str = "black") -> None:
        self.parts.append(f'<circle cx="{x:g}" cy="{y:g}" r="{radius:g}" fill="{fill}" stroke="{stroke}"/>')

    def write(self, path: Path) -> None:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text("\n".join([*self.parts, "</svg>", ""]))
