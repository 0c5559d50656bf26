"""Image files, the virtual camera and the kernels."""

import os
from pathlib import Path

import numpy as np
import pytest

import zvfilter
from conftest import REPOSITORY
from zvfilter import kernels


@pytest.mark.parametrize("end", ["png", "PGM", "npy", "raw", "bin"])
def test_images_keep_their_bits(tmp_path, noise, end):
    image = noise((13, 17)) * np.uint16(61) + np.uint16(7)
    path = tmp_path / f"täst\udcff.{end}"
    zvfilter.write(path, np.asfortranarray(image))
    again = zvfilter.read(path, size=(17, 13) if end in ("raw", "bin") else None)
    assert again.dtype == np.uint16 and np.array_equal(again, image)
    again[0, 0] = 1
    if end == "npy":
        assert np.array_equal(np.load(path), image)
    assert os.listdir(tmp_path) == [path.name]


def test_image_refusals(tmp_path, noise):
    (tmp_path / "broken.png").write_bytes(b"no image")
    (tmp_path / "x.raw").write_bytes(b"1234")
    for call, kind in [(lambda: zvfilter.read(tmp_path / "broken.png"), OSError), (lambda: zvfilter.read(tmp_path / "no.png"), OSError),
                       (lambda: zvfilter.read(tmp_path / "x.raw"), ValueError), (lambda: zvfilter.read(tmp_path / "x.jpg"), ValueError),
                       (lambda: zvfilter.write(tmp_path / "x.jpg", noise()), ValueError),
                       (lambda: zvfilter.write(tmp_path / "no" / "x.png", noise()), OSError)]:
        with pytest.raises(kind) as refusal:
            call()
        assert isinstance(refusal.value, zvfilter.Error) and str(tmp_path) in str(refusal.value)
    with pytest.raises(TypeError):
        zvfilter.write(tmp_path / "x.png", noise().astype(float))
    assert sorted(os.listdir(tmp_path)) == ["broken.png", "x.raw"]


def test_the_virtual_camera_knows_its_truth(camera):
    assert len(camera) == 6 and len(camera[1:3]) == 2
    assert np.array_equal(camera[-1].disparity, camera[5].disparity)
    transform = zvfilter.DisparityTransform(input=camera.input)
    depth, truth = transform(camera[0].disparity).astype(int), camera[0].truth.astype(int)
    known = (depth > 0) & (truth > 0)
    assert known.mean() > 0.5 and np.median(abs(depth - truth)[known] / truth[known]) < 0.05
    with pytest.raises(IndexError):
        camera[6]
    for wrong in ({"size": (10, 10)}, {"pack_mode": 9}, {"pack_mode": 900}, {"frames": -1}, {"size": (-1, 200)}):
        with pytest.raises(ValueError):
            zvfilter.VirtualCamera(**wrong)


def test_a_camera_file_is_an_input(tmp_path, camera):
    tool = Path(os.environ.get("ZVFILTER_TOOL", REPOSITORY / "build/release/bin/zvfilter"))
    if not tool.exists():
        pytest.skip("the tool is not built; ZVFILTER_TOOL may name it")
    assert os.system(f"'{tool}' camera --frames 1 --size 320x200 --seed 7 -o '{tmp_path}' >/dev/null") == 0
    assert zvfilter.Input.load(tmp_path / "camera.json") == camera.input
    assert np.array_equal(zvfilter.read(next(tmp_path.glob("*.png"))), camera[0].disparity)


def test_kernels_are_what_filters_run(noise):
    frame = noise((60, 80))
    assert np.array_equal(kernels.fill_holes(frame, 2), zvfilter.HoleFillingFilter(hole_filling_mode=2)(frame))
    temporal, history = zvfilter.TemporalFilter(weight=0.3), None
    for seed in range(3):
        made, history = kernels.temporal(noise(seed=seed), history, 0.1, 0.3)
        assert np.array_equal(made, temporal(noise(seed=seed))) and np.array_equal(made, history)
    smooth = zvfilter.SpatialAdvancedFilter(alpha=0.3, disp_diff=100, radius=2,
                                            input=zvfilter.Input("disparity", baseline=50, fx=448))
    assert np.array_equal(kernels.spatial(frame, alpha=0.3, disp_diff=100, radius=2), smooth(frame))
    assert np.array_equal(kernels.spatial(frame, lut=[100], alpha=0.3), kernels.spatial(frame, disp_diff=100, alpha=0.3))


def test_kernels_by_hand():
    plane = np.full((8, 8), 1000, np.uint16)
    speck = plane.copy()
    speck[3, 3:5] = 3000
    cleared = plane.copy()
    cleared[3, 3:5] = 0
    assert np.array_equal(kernels.remove_speckles_full(speck, 2), cleared)
    assert np.array_equal(kernels.remove_speckles(speck, 2), cleared)
    assert np.array_equal(kernels.remove_speckles(speck, max_size_map=[[2]], lut=[16]), cleared)
    assert np.array_equal(kernels.remove_speckles_full(speck, 1), speck)
    assert kernels.remove_speckles_pyramid(speck, 1)[3, 3] == 0 == kernels.remove_speckles_pyramid(speck, max_size_map=[[1]])[3, 3]
    assert np.array_equal(kernels.downsample(speck), speck[1::2, 1::2])
    half = kernels.remove_speckles_full(kernels.downsample(speck), 1)
    assert np.array_equal(kernels.remove_speckles_half(speck, 1), kernels.upsample(speck, half, 16))
    assert kernels.horizontal_margin(plane, 2, 3)[4].tolist() == [0, 0, 1000, 1000, 1000, 1000, 0, 0]
    assert np.count_nonzero(kernels.margin(plane, 2, 1, 3, 3)) == 4 * 6
    assert np.count_nonzero(kernels.margin_asym(plane, 2, 1, 0, 3, 3)) == 8 * 5
    table = kernels.chamfer(8, 8, 0, 2)
    assert np.array_equal(kernels.margin_with_chamfer(plane, 1, 3, 3, table), kernels.margin(plane, 2, 1, 3, 3))


@pytest.mark.parametrize("call, words", [
    (lambda f: kernels.fill_holes(f, 3), "mode is 3"), (lambda f: kernels.margin(f, 5, 1, 2, 2), "larger than its limit"),
    (lambda f: kernels.margin_asym(f, 1, 2, 0, 3, 3), "smaller than margin_small"), (lambda f: kernels.spatial(f, alpha=2), "alpha is 2"),
    (lambda f: kernels.spatial(f, magnitude=0), "magnitude is 0"), (lambda f: kernels.spatial(f, radius=300), "radius is 300"),
    (lambda f: kernels.spatial(f, horizontal=False, vertical=False), "neither"), (lambda f: kernels.spatial(f, lut=[1] * 256), "256"),
    (lambda f: kernels.temporal(f, f[1:], 0.1, 0.4), "history"), (lambda f: kernels.upsample(f, f, 1), "twice"),
    (lambda f: kernels.downsample(f[:1]), "side of 1"), (lambda f: kernels.margin_with_chamfer(f, 1, 3, 3, f), "chamfer"),
    (lambda f: kernels.remove_speckles(f, 10**12), "max_size"),
    (lambda f: kernels.remove_speckles(f, max_size_map=np.ones((99, 1), int)), "map"),
    (lambda f: kernels.chamfer(9, -1, 0, 0), "count")])
def test_kernels_say_why_not(noise, call, words):
    with pytest.raises(ValueError, match=words):
        call(noise())
