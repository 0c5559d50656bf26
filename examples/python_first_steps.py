"""Reads a depth image, fills its holes and writes it. Without a file's name, the virtual camera takes one.

Use: python_first_steps.py [IMAGE]
"""

import sys

import zvfilter

if len(sys.argv) < 2:
    camera = zvfilter.VirtualCamera()
    zvfilter.write("depth.png", zvfilter.DisparityTransform(input=camera.input)(camera[0].disparity))

depth = zvfilter.read(sys.argv[1] if len(sys.argv) > 1 else "depth.png")
filled = zvfilter.HoleFillingFilter(hole_filling_mode=1)(depth)
zvfilter.write("filled.png", filled)

print(f"{(depth == 0).sum()} holes before, {(filled == 0).sum()} after: filled.png")
