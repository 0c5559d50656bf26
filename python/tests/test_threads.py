"""Python threads: they run while filters do, and may share a chain."""

import time
from concurrent.futures import ThreadPoolExecutor

import numpy as np

import zvfilter
from conftest import meanwhile


def test_another_thread_runs_meanwhile(noise):
    smooth = zvfilter.SpatialAdvancedFilter(magnitude=5, input=zvfilter.Input("linear"))
    frame = noise((4000, 4000))
    ticks = []

    def tick():
        ticks.append(time.perf_counter())
        time.sleep(0.0005)

    with meanwhile(tick):
        start = time.perf_counter()
        smooth(frame)
        end = time.perf_counter()
    inside = [tick for tick in ticks if start < tick < end]
    # Where the interpreter was held, they would all lie at the ends.
    assert end - start > 0.01
    assert max(inside) - min(inside) > 0.5 * (end - start)


def test_a_shared_chain_does_a_frame_at_a_time(noise):
    chain = zvfilter.Chain(["SpatialAdvancedFilter:magnitude=3", "HoleFillingFilter:hole_filling_mode=2"],
                           input=zvfilter.Input("linear"))
    frames = [noise((200, 300), seed) for seed in range(8)]
    expected = [chain(frame) for frame in frames]

    def change():
        chain[0].alpha = chain[0].alpha
        assert chain.copy() == chain and chain.to_json() and chain.output_for((10, 10)).shape == (10, 10)

    with meanwhile(change), ThreadPoolExecutor(4) as pool:
        results = list(pool.map(lambda number: chain(frames[number % 8], stages=True), range(160)))
    assert all(np.array_equal(result, expected[number % 8]) for number, result in enumerate(results))
