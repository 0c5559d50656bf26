#!/usr/bin/env python3
"""Makes the documentation site. The module zvfilter is to be on PYTHONPATH.

Use: make_site.py TOOL FOLDER [FRAMES]    (the tool zvfilter; the site is FOLDER/html; a folder with frames of a real camera)
"""

import os
import shutil
import subprocess
import sys
from pathlib import Path

import figures_of_conversion
import figures_of_speckles
import figures_of_strips
import filter_pages
import scenes

HERE = Path(__file__).resolve().parent
DOCS = HERE.parent
ROOT = DOCS.parent
#: What pages point at beside pages.
BESIDE = ["examples", "include", "presets", "python", "README.md", "CONTRIBUTING.md", "CHANGELOG.md"]


def copy_if_newer(source: Path, target: Path) -> None:
    target.parent.mkdir(parents=True, exist_ok=True)
    if not target.exists() or source.stat().st_mtime != target.stat().st_mtime:
        shutil.copy2(source, target)


def gather(source: Path) -> Path:
    """The pages as they are, in a folder where those that are made can join them."""
    pages = source / "docs"
    kept = set()
    for file in DOCS.rglob("*"):
        if file.suffix in (".md", ".png", ".svg") and HERE not in file.parents:
            copy_if_newer(file, pages / file.relative_to(DOCS))
            kept.add(pages / file.relative_to(DOCS))
    for old in set(pages.rglob("*.md")) - kept - set((pages / "filters").glob("*.md")):
        old.unlink()
    for name in BESIDE:
        link = source / name
        link.unlink(missing_ok=True)
        link.symlink_to(ROOT / name)
    return pages


def run(*command: object, **options: object) -> None:
    subprocess.run([str(word) for word in command], check=True, **options)


def main(tool: str, folder: str, frames: str = "") -> None:
    real = scenes.recorded(frames) if frames else None
    out = Path(folder).resolve()
    pages = gather(out / "source")
    filter_pages.make(tool, pages / "filters", real)
    for figures in (figures_of_speckles, figures_of_strips, figures_of_conversion):
        figures.make(pages / "inside")
    (out / "headers").mkdir(parents=True, exist_ok=True)
    run("doxygen", HERE / "headers.doxygen", cwd=ROOT / "include", env={**os.environ, "ZVFILTER_DOCS": str(out)})
    # Anew and in one order: what is left from the last time would show in the search index, and so would random hashes.
    for old in ("html", "trees"):
        shutil.rmtree(out / old, ignore_errors=True)
    run("sphinx-build", "-q", "-W", "--keep-going", "-c", HERE, "-d", out / "trees", "-b", "html",
        f"-Dbreathe_projects.headers={out / 'headers/xml'}", "-Dbreathe_default_project=headers", pages, out / "html",
        env={**os.environ, "PYTHONHASHSEED": "0"})
    print(f"{out / 'html/index.html'}")


if __name__ == "__main__":
    if len(sys.argv) not in (3, 4):
        sys.exit(__doc__)
    main(*sys.argv[1:])
