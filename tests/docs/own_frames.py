#!/usr/bin/env python3
"""The rows "real frame" of the filters' pages: which filters have one, what is said under it, and folders that have none.

Use: own_frames.py    (docs/make/ and the module zvfilter on PYTHONPATH)
"""

import json
import tempfile
from pathlib import Path

import examples
import numpy as np
import scenes
import shown
import zvfilter


def record(folder: Path, frames: list, **camera: object) -> Path:
    folder.mkdir()
    for number, frame in enumerate(frames):
        zvfilter.write(folder / f"f_{number}.png", frame)
    if camera:
        (folder / "camera.json").write_text(json.dumps(camera))
    return folder


def rows(folder: Path) -> dict:
    """By filter, each parameter's pictures and captions at its three values."""
    scene = scenes.recorded(str(folder))
    made = {name: shown.Real(name, scene) for name in examples.EXAMPLES if shown.Real.takes(name, scene.input)}
    for name, row in made.items():
        for parameter, settings in (examples.EXAMPLES[name] or {"after": [{}]}).items():
            for values in settings:
                file, _ = row.draw(folder / "pictures", parameter, values)
                assert (folder / "pictures" / file).stat().st_size > 100, file
                assert "valid" in row.caption(values) or " x " in row.caption(values), (name, values)
    return made


def refused(folder: Path, why: str) -> None:
    try:
        scenes.recorded(str(folder))
    except SystemExit as said:
        assert str(folder) in str(said) and why in str(said), said
    else:
        raise AssertionError(f"{folder} was taken")


def main() -> None:
    camera = zvfilter.VirtualCamera((700, 420), frames=3, pack_mode=1)
    disparity = [frame.disparity for frame in camera]
    depth = [frame.copy() for frame in zvfilter.DisparityTransform(input=camera.input).stream(disparity)]
    with tempfile.TemporaryDirectory() as work:
        of_depth = rows(record(Path(work, "depth"), [frame * np.uint16(10) for frame in depth], valueScale=0.1, metadata={"32": 8}))
        assert set(of_depth) == set(examples.EXAMPLES) - {"DisparityTransform", "OpenNIDisparityTransform"}
        assert np.allclose(of_depth["TemporalFilter"].before(), (depth[-1] * np.uint16(10)) * 0.1)
        assert of_depth["DepthResize"].caption({"dst_width": 480, "dst_height": 400, "ex_right": -160}) == "540 x 420"
        geometry = {"baseline": camera.input.baseline, "fx": camera.input.fx, "packMode": 1}
        of_codes = rows(record(Path(work, "codes"), disparity, pixelType="disparity", disparity=geometry))
        assert set(of_codes) == set(examples.EXAMPLES) - {"HardwareD2DCorrectionFilter"}
        to_depth = zvfilter.Chain(["DisparityTransform"], input=zvfilter.Input.load(Path(work, "codes/camera.json")))
        assert np.array_equal(of_codes["TemporalFilter"].before(), to_depth(disparity[-1]))
        refused(Path(work, "none"), "No such file")
        refused(record(Path(work, "one"), depth[:1]), "two or more")
        refused(record(Path(work, "sizes"), [depth[0], depth[0][:100]]), "one size")
        refused(record(Path(work, "empty"), [np.zeros_like(depth[0])] * 2), "no valid pixel")
        refused(record(Path(work, "camera"), depth, pixelType="colour"), "camera.json")
    print("rows of real frames: " + ", ".join(of_codes))


if __name__ == "__main__":
    main()
