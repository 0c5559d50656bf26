"""Filters folders of frames, on this machine or on a cluster. Without folders, the virtual camera records three.

Use: python_batch.py [--scheduler ADDRESS] [FOLDER...]    (results go to filtered/)
"""

import argparse
from pathlib import Path

import zvfilter
from zvfilter import batch

parser = argparse.ArgumentParser()
parser.add_argument("folders", nargs="*")
parser.add_argument("--scheduler", help="of a cluster, for example tcp://head:8786")
options = parser.parse_args()

camera = zvfilter.VirtualCamera((320, 200), frames=5)
if not options.folders:
    for seed in (1, 2, 3):
        folder = Path(f"recorded/scene_{seed}")
        folder.mkdir(parents=True, exist_ok=True)
        for number, frame in enumerate(zvfilter.VirtualCamera((320, 200), frames=5, seed=seed)):
            if not (folder / f"f_{number}.png").exists():
                zvfilter.write(folder / f"f_{number}.png", frame.disparity)
        options.folders.append(folder)

# The parts of a chain that remember make a sequence one piece of work.
chain = zvfilter.Chain(["DisparityTransform:", "TemporalFilter:", "HoleFillingFilter:hole_filling_mode=1"], input=camera.input)
reports = batch.run(chain, options.folders, "filtered", options.scheduler, workers=2, progress=True)
print(sum(report.frames for report in reports), "frames,", sum(report.skipped for report in reports), "sequences made before")
raise SystemExit(any(report.error for report in reports))
