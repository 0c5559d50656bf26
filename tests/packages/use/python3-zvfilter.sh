#!/usr/bin/env bash
# A PNG file goes through a filter and comes back with all bits.
python3 - <<'P'
import numpy as np
import zvfilter
depth = np.arange(300, 300 + 40 * 31 * 40, 40, dtype=np.uint16).reshape(31, 40)
depth[10, 10] = 0
zvfilter.write("depth.png", depth)
filled = zvfilter.HoleFillingFilter(hole_filling_mode=1)(zvfilter.read("depth.png"))
assert filled[10, 10] != 0
filled[10, 10] = 0
assert (filled == depth).all()
P
