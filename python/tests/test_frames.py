"""Arrays in and out, and what is said of them."""

import dataclasses
import gc

import numpy as np
import pytest

import zvfilter


def fill():
    return zvfilter.HoleFillingFilter(hole_filling_mode=1)


@pytest.mark.parametrize("view", [
    lambda a: a[:, :64], lambda a: a[::2, 3:67], lambda a: a[:, 5:6], lambda a: a[7:8, :], lambda a: a[:, ::2], lambda a: a[::-1],
    lambda a: a[:, ::-1], lambda a: np.asfortranarray(a), lambda a: a.T, lambda a: np.broadcast_to(a[3], (20, 97)),
    lambda a: a.astype(">u2"), lambda a: a.astype(np.int32), lambda a: a.astype(np.uint64), lambda a: a.tolist(),
    lambda a: np.frombuffer(b"\0" + a.tobytes(), np.uint8)[1:].view(np.uint16).reshape(a.shape)],
    ids=["rows", "every other row", "column", "row", "columns", "upside down", "mirrored", "by columns", "turned", "repeated",
         "big-endian", "int32", "uint64", "list", "odd address"])
def test_every_layout_gives_the_same_pixels(noise, view):
    frame = view(noise((40, 97)))
    plain = np.array(frame, np.uint16, order="C")
    assert np.array_equal(fill()(frame), fill()(plain))


def test_rows_are_read_where_they_lie_and_left_alone(noise):
    image = noise((40, 97))
    kept = image.copy()
    frame = zvfilter.arrays.as_frame(image[::2, 3:67])
    assert np.shares_memory(frame, image)
    assert not np.shares_memory(zvfilter.arrays.as_frame(image[:, ::2]), image)
    image.flags.writeable = False
    made = fill()(image)
    assert np.array_equal(image, kept) and not np.shares_memory(made, image)


def test_results_are_pythons_own(noise):
    chain = zvfilter.Chain([fill()])
    results = [chain(noise(seed=seed)) for seed in range(4)]
    expected = [result.copy() for result in results]
    del chain
    gc.collect()
    assert all(np.array_equal(*pair) for pair in zip(results, expected))
    results[0][:] = 1
    assert results[0].flags.writeable and np.array_equal(results[1], expected[1])
    assert len({result.ctypes.data for result in results}) == 4


@pytest.mark.parametrize("frame, kind, words", [
    (np.zeros((4, 4)), TypeError, "multiply by 1000 / value_scale"), (np.zeros((4, 4), bool), TypeError, "bool"),
    (np.zeros((4, 4), complex), TypeError, "whole numbers"), (np.array([["a"]]), TypeError, "whole numbers"),
    (np.array([[1, 2], [3, -4]]), ValueError, r"sample at \(1, 1\) is -4"), (np.array([[65536]]), ValueError, "65536"),
    (np.zeros((3, 4, 4), np.uint16), ValueError, r"stream\(\)"), (np.zeros(4, np.uint16), ValueError, "has 1"),
    (np.zeros((0, 4), np.uint16), ValueError, "height"), (np.zeros((1, 40000), np.uint16), ValueError, "width")])
def test_what_is_no_frame_is_refused(frame, kind, words):
    with pytest.raises(kind, match=words):
        fill()(frame)


def test_inputs():
    stereo = zvfilter.Input("disparity", baseline=50.1, fx=448)
    assert stereo == zvfilter.Input(**dataclasses.asdict(stereo)) and stereo.pack_mode == 2 and stereo.dual_camera is True
    assert eval(repr(stereo), {"Input": zvfilter.Input}) == stereo
    assert zvfilter.Input(intrinsics=[448, 448, 320, 200]).intrinsics == (448, 448, 320, 200)
    for fields, key in [({"baseline": 50}, "fx"), ({"zpd": 50}, "baseline"), ({"bits": 17}, "bits"), ({"bits": 300}, "bits"),
                        ({"value_scale": 0}, "value_scale"), ({"value_scale": float("nan")}, "value_scale"),
                        ({"pixel_type": "depht"}, "pixel_type"), ({"intrinsics": (1, 2)}, "intrinsics"), ({"fx": "x"}, "fx"),
                        ({"packed": "x"}, "packed")]:
        with pytest.raises(zvfilter.InvalidError) as refusal:
            zvfilter.Input(**({"baseline": 1} if "fx" in fields else {}) | fields)
        assert (refusal.value.code, refusal.value.key) == (zvfilter.Code.BAD_INPUT, key)


def test_a_chain_file_keeps_all_of_an_input(tmp_path):
    given = zvfilter.Input("disparity", value_scale=0.5, bits=12, packed=True, correction=6, intrinsics=(448, 449, 320, 200), baseline=50.5,
                           fx=448.25, zpd=900.5, zpps=0.125, unit=2, min_disparity=3, disparity_offset=4.5, invalid_disparity=7, integer_bits=9,
                           code_bits=13, pack_mode=3, dual_camera=False)
    zvfilter.Chain(["HoleFillingFilter"], input=given).save(tmp_path / "chain.json")
    assert zvfilter.Chain.load(tmp_path / "chain.json").input == given


def test_another_input_or_size_starts_afresh(noise):
    calm = zvfilter.TemporalFilter()
    calm(noise(seed=1))
    calm.input = calm.input
    assert not np.array_equal(calm(noise(seed=2)), noise(seed=2))
    calm.input = zvfilter.Input(value_scale=2)
    assert np.array_equal(calm(noise(seed=3)), noise(seed=3))
    calm((noise((50, 50))))
    assert np.array_equal(calm(noise(seed=4)), noise(seed=4))
