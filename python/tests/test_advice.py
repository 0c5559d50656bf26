"""Advice on frames of the virtual camera."""

import numpy as np
import pytest

import zvfilter
from conftest import longest_pause


@pytest.fixture(scope="module")
def camera():
    return zvfilter.VirtualCamera((160, 112), frames=9, seed=3, baseline=200, noise=0.1, motion="still")


@pytest.fixture(scope="module")
def frames(camera):
    return [frame.disparity for frame in camera]


def advise(camera, frames, **arguments):
    return zvfilter.advise(frames, input=camera.input, **{"evaluations": 24, **arguments})


def test_it_helps_and_its_chain_is_ready_to_run(camera, frames):
    told = []
    found = advise(camera, frames, threads=1, progress=lambda *now: told.append(now))
    assert found.helps and found.held_out and found.evaluations <= 24
    assert found.rows["advised"]["loss"] < found.rows["untouched"]["loss"] == 1
    assert found.rows["advised"]["roughness"] < found.rows["untouched"]["roughness"]
    assert len(found.reasons) == len(found.chain) - 1, "the conversion needs none"
    assert found.chain(frames[0]).shape == frames[0].shape
    assert told[-1][:2] == (24, 24) and told[-1][2] < 1 and "DisparityTransform" in told[-1][3]
    assert advise(camera, frames, threads=3) == found, "neither threads nor time change the answer"
    assert advise(camera, frames, seed=2).chain != found.chain


def test_one_step_of_a_chain_by_the_truth(camera, frames):
    chain = zvfilter.Chain(["DisparityTransform:", "NoiseRemovalFilter:max_size=33", "smooth=SpatialAdvancedFilter:"],
                           input=camera.input)
    found = zvfilter.advise(frames, [frame.truth for frame in camera], chain=chain, step="smooth", evaluations=12)
    assert found.chain["NoiseRemovalFilter"].max_size == 33
    assert found.chain["smooth"].values != chain["smooth"].values
    assert found.chain.input == chain.input
    assert "roughness" not in found.rows["advised"], "which the truth replaces"
    assert 10 < found.rows["untouched"]["median"] < 1000, "millimetres"
    assert found.rows["advised"]["median"] < found.rows["untouched"]["median"]


def test_progress_may_end_it_and_fail(camera, frames):
    found = advise(camera, frames, evaluations=400, progress=lambda done, *now: done < 32)
    assert found.evaluations < 100 and found.helps, "the best so far"

    def fail(*now):
        raise KeyError("told")
    with pytest.raises(KeyError, match="told"):
        advise(camera, frames, progress=fail)


def test_other_threads_run_meanwhile(camera, frames):
    assert longest_pause(lambda: advise(camera, frames, threads=1)) < 0.8


def test_what_limits_the_answer_is_remarked(camera, frames):
    found = advise(camera, frames[:1])
    assert not found.held_out and "One frame" in " ".join(found.remarks)


@pytest.mark.parametrize("arguments, message", [
    ({"frames": []}, "no frames"),
    ({"truth": [np.zeros((112, 160), np.uint16)]}, "expected 9"),
    ({"weights": {"medain": 1}}, "median"),
    ({"weights": {"median": -1}}, "0 to 1000"),
    ({"evaluations": 0}, "1 or more"),
    ({"chain": zvfilter.Chain(["TemporalFilter:"]), "step": "smooth"}, "no such step"),
    ({"frames": [np.ones((112, 160), np.uint16), np.ones((48, 64), np.uint16)]}, "frame 1 is 64x48"),
    ({"frames": [np.full((48, 64), 1000, np.uint16)] * 3, "input": None}, "baseline and fx"),
])
def test_what_makes_no_sense_is_named(camera, frames, arguments, message):
    given = {"frames": frames, "input": camera.input, "evaluations": 8, **arguments}
    with pytest.raises(ValueError, match=message):
        zvfilter.advise(given.pop("frames"), **given)
