"""Python threads: they run while filters do, and may share a chain."""

from concurrent.futures import ThreadPoolExecutor

import numpy as np

import zvfilter
from conftest import longest_pause, meanwhile


def test_another_thread_runs_meanwhile(noise):
    smooth = zvfilter.SpatialAdvancedFilter(magnitude=5, input=zvfilter.Input("linear"))
    frame = noise((4000, 4000))
    assert longest_pause(lambda: smooth(frame)) < 0.8


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
