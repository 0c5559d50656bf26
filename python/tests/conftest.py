import contextlib
import threading
import time
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import numpy as np
import pytest

import zvfilter

REPOSITORY = Path(__file__).resolve().parents[2]

#: What remembers, what changes sizes, and a tag.
STEPS = ["DisparityTransform:", "NoiseRemovalFilter:max_size=60,min_diff=64", "smooth=SpatialAdvancedFilter:alpha=0.4",
         "TemporalFilter:weight=0.3", "HoleFillingFilter:hole_filling_mode=1", "DepthResize:scale=0.5"]


@contextlib.contextmanager
def meanwhile(work):
    """Another thread does this over and over."""
    done = threading.Event()

    def repeat():
        while not done.is_set():
            work()

    with ThreadPoolExecutor(1) as pool:
        repeated = pool.submit(repeat)
        try:
            yield
        finally:
            done.set()
        repeated.result()


def longest_pause(work):
    """The longest time in which no other Python thread ran while this was done, as a share of all its time."""
    ticks = []

    def tick():
        ticks.append(time.perf_counter())
        time.sleep(0.0005)

    with meanwhile(tick):
        start = time.perf_counter()
        work()
        end = time.perf_counter()
    times = [start, *(each for each in ticks if start < each < end), end]
    return max(later - earlier for earlier, later in zip(times, times[1:])) / (end - start)


@pytest.fixture(scope="session")
def camera():
    return zvfilter.VirtualCamera((320, 200), frames=6, seed=7)


@pytest.fixture(scope="session")
def disparity(camera):
    return [frame.disparity for frame in camera]


@pytest.fixture
def chain(camera):
    return zvfilter.Chain(STEPS, input=camera.input)


@pytest.fixture
def noise():
    """Depth with holes, by seed."""
    def make(shape=(48, 64), seed=1):
        random = np.random.default_rng(seed)
        frame = random.integers(900, 1100, shape).astype(np.uint16)
        frame[random.random(shape) < 0.1] = 0
        return frame
    return make
