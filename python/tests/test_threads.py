"""Python threads: they run while filters do, and may share a chain."""

import threading
import time
from concurrent.futures import ThreadPoolExecutor

import numpy as np

import zvfilter


def test_another_thread_runs_meanwhile(noise):
    smooth = zvfilter.SpatialAdvancedFilter(magnitude=5, input=zvfilter.Input("linear"))
    frame = noise((4000, 4000))
    ticks, done = [], threading.Event()

    def tick():
        while not done.is_set():
            ticks.append(time.perf_counter())
            time.sleep(0.0005)

    ticker = threading.Thread(target=tick)
    ticker.start()
    start = time.perf_counter()
    smooth(frame)
    end = time.perf_counter()
    done.set()
    ticker.join()
    inside = [tick for tick in ticks if start < tick < end]
    # Where the interpreter was held, they would all lie at the ends.
    assert end - start > 0.01
    assert max(inside) - min(inside) > 0.5 * (end - start)


def test_a_shared_chain_does_a_frame_at_a_time(noise):
    chain = zvfilter.Chain(["SpatialAdvancedFilter:magnitude=3", "HoleFillingFilter:hole_filling_mode=2"],
                           input=zvfilter.Input("linear"))
    frames = [noise((200, 300), seed) for seed in range(8)]
    expected = [chain(frame) for frame in frames]
    stop = threading.Event()

    def change():
        while not stop.is_set():
            chain[0].alpha = chain[0].alpha
            assert chain.copy() == chain and chain.to_json() and chain.output_for((10, 10)).shape == (10, 10)

    changer = threading.Thread(target=change)
    changer.start()
    try:
        with ThreadPoolExecutor(4) as pool:
            results = list(pool.map(lambda number: chain(frames[number % 8], stages=True), range(160)))
    finally:
        stop.set()
        changer.join()
    assert all(np.array_equal(result, expected[number % 8]) for number, result in enumerate(results))


def test_results_may_end_on_any_thread(noise):
    chain = zvfilter.Chain(["HoleFillingFilter:hole_filling_mode=1"])
    expected = chain(noise())
    with ThreadPoolExecutor(2) as pool:
        for _ in range(50):
            made = [chain(noise()) for _ in range(4)]
            pool.submit(made.clear).result()
    assert np.array_equal(chain(noise()), expected)
