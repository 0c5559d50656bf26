"""The values that show what each parameter does."""

from __future__ import annotations

from typing import Dict, List

Values = Dict[str, float]


def _each(name: str, *values: float, **others: float) -> List[Values]:
    return [{name: value, **others} for value in values]


_HALF = {"dst_width": 320, "dst_height": 200}
_BOTH = {"enable_vertical_direction": 1}

EXAMPLES: Dict[str, Dict[str, List[Values]]] = {
    "DisparityTransform": {
        "max_depth": _each("max_depth", 1500, 2500, 10000),
        "min_depth": _each("min_depth", 100, 1200, 2000),
        "depth_uint": _each("depth_uint", 0.03, 1, 10)},
    "HoleFillingFilter": {
        "hole_filling_mode": _each("hole_filling_mode", 0, 1, 2)},
    "NoiseRemovalFilter": {
        "max_size": _each("max_size", 20, 80, 600, min_diff=64),
        "min_diff": _each("min_diff", 32, 64, 256),
        "width": _each("width", 100, 848, 1280, min_diff=64),
        "height": _each("height", 60, 480, 800, min_diff=64)},
    "SpatialAdvancedFilter": {
        "magnitude": _each("magnitude", 1, 3, 5),
        "alpha": _each("alpha", 0.1, 0.5, 0.9),
        "disp_diff": _each("disp_diff", 20, 160, 1000),
        "radius": _each("radius", 1, 4, 8)},
    "TemporalFilter": {
        "diff_scale": _each("diff_scale", 0.1, 0.4, 1),
        "weight": _each("weight", 0.1, 0.4, 0.8)},
    "DepthResize": {
        "dst_width": [{"dst_width": 480, "dst_height": 400, "ex_right": -160}, {"dst_width": 640, "dst_height": 400},
                      {"dst_width": 720, "dst_height": 400, "ex_right": 80}],
        "dst_height": [{"dst_height": 300, "dst_width": 640, "ex_bottom": -100}, {"dst_height": 400, "dst_width": 640},
                       {"dst_height": 460, "dst_width": 640, "ex_bottom": 60}],
        "scale": _each("scale", 0.25, 0.5, 1.2),
        "ex_left": _each("ex_left", -160, 0, 80),
        "ex_right": _each("ex_right", -160, 0, 80),
        "ex_top": _each("ex_top", -100, 0, 60),
        "ex_bottom": _each("ex_bottom", -100, 0, 60)},
    "EdgeNoiseRemovalFilter": {
        "margin_x_th": _each("margin_x_th", 6, 40, 120, limit_x_th=400),
        "margin_y_th": _each("margin_y_th", 6, 40, 120, limit_y_th=200, **_BOTH),
        "limit_x_th": _each("limit_x_th", 60, 150, 400, margin_x_th=60),
        "limit_y_th": _each("limit_y_th", 60, 100, 300, margin_y_th=60, **_BOTH),
        "enable_vertical_direction": _each("enable_vertical_direction", 0, 1, margin_x_th=60, margin_y_th=30),
        "width": _each("width", 320, 640, 1280, margin_x_th=40, limit_x_th=400),
        "height": _each("height", 200, 400, 800, margin_y_th=40, limit_y_th=200, **_BOTH)},
    "HardwareD2DCorrectionFilter": {},
    "OpenNIDisparityTransform": {
        "max_depth": _each("max_depth", 1500, 2500, 10000),
        "min_depth": _each("min_depth", 100, 1200, 2000),
        "depth_uint": _each("depth_uint", 0.03, 1, 10),
        "dst_width": _each("dst_width", 240, 320, 480, dst_height=200),
        "dst_height": _each("dst_height", 120, 200, 300, dst_width=320),
        "scale": _each("scale", 0.5, 1, 2, **_HALF),
        "x_cut": _each("x_cut", 0, 160, 320, **_HALF),
        "y_cut": _each("y_cut", 0, 100, 200, **_HALF),
        "x_set": _each("x_set", 0, 20, 80, **_HALF),
        "y_set": _each("y_set", 0, 20, 60, **_HALF)},
}

#: Filters that are shown on the middle of the frame, pixel by pixel; of the others the whole frame is seen.
CLOSE = {"HoleFillingFilter", "NoiseRemovalFilter", "SpatialAdvancedFilter", "TemporalFilter"}

#: What the time of each filter is measured with, beside its defaults.
COSTS: Dict[str, List[Values]] = {
    "DisparityTransform": [],
    "HoleFillingFilter": _each("hole_filling_mode", 1, 2),
    "NoiseRemovalFilter": _each("min_diff", 32, 64),
    "SpatialAdvancedFilter": [{"alpha": 0.37}, {"magnitude": 3}, {"magnitude": 5}, {"radius": 8}],
    "TemporalFilter": _each("weight", 0.1),
    "DepthResize": _each("scale", 0.5, 1.5),
    "EdgeNoiseRemovalFilter": [_BOTH],
    "HardwareD2DCorrectionFilter": [],
    "OpenNIDisparityTransform": [_HALF],
}
