"""Filters by themselves: their classes, values and what they refuse."""

import copy
import inspect
import pickle

import numpy as np
import pytest

import zvfilter


def filter_classes():
    return [kind for kind in vars(zvfilter).values()
            if inspect.isclass(kind) and issubclass(kind, zvfilter.Filter) and kind is not zvfilter.Filter]


def test_there_are_nine_and_all_begin_with_their_defaults():
    assert len(filter_classes()) == 9
    for kind in filter_classes():
        made = kind()
        defaults = {name: parameter.default for name, parameter in inspect.signature(kind).parameters.items()}
        for name in ("tag", "enabled", "input"):
            defaults.pop(name)
        assert made.values == defaults
        assert all(type(value) is type(defaults[name]) for name, value in made.values.items())
        assert all(f"{name} : " in kind.__doc__ and getattr(kind, name).__doc__ for name in defaults)
        assert repr(made) == f"{kind.__name__}()"


def test_attributes_are_values_between_frames(noise):
    smooth = zvfilter.SpatialAdvancedFilter(alpha=1, input=zvfilter.Input("linear"))
    untouched = smooth(noise())
    smooth.alpha = np.float32(0.25)
    assert smooth.alpha == 0.25 and repr(smooth) == "SpatialAdvancedFilter(alpha=0.25)"
    assert (smooth(noise()) != untouched).any()
    smooth.set(radius=np.int8(2), magnitude=True)
    assert (smooth.radius, smooth.magnitude) == (2, 1)
    edges = zvfilter.EdgeNoiseRemovalFilter(enable_vertical_direction=True)
    assert edges.enable_vertical_direction is True


@pytest.mark.parametrize("key, value", [("alpha", 3), ("alpha", float("nan")), ("radius", 1.5), ("radius", 10**12), ("disp_diff", -1)])
def test_values_out_of_range_are_refused_and_change_nothing(key, value):
    smooth = zvfilter.SpatialAdvancedFilter(alpha=0.3)
    before = smooth.values
    with pytest.raises(ValueError) as refusal:
        smooth.set(magnitude=4, **{key: value})
    assert isinstance(refusal.value, zvfilter.Error)
    assert (refusal.value.code, refusal.value.step, refusal.value.tag, refusal.value.key) == (
        zvfilter.Code.BAD_CHAIN, 0, "SpatialAdvancedFilter", key)
    assert smooth.values == before
    assert pickle.loads(pickle.dumps(refusal.value)).key == key


def test_what_is_no_parameter_or_no_number():
    smooth = zvfilter.SpatialAdvancedFilter()
    with pytest.raises(AttributeError):
        smooth.alfa = 0.3
    with pytest.raises(TypeError, match="no parameter alfa"):
        zvfilter.SpatialAdvancedFilter(alfa=0.3)
    with pytest.raises(TypeError, match="is a number"):
        smooth.alpha = "0.3,radius=3"
    with pytest.raises(TypeError):
        zvfilter.SpatialAdvancedFilter(0.3)
    assert smooth.values == zvfilter.SpatialAdvancedFilter().values


def test_copies_and_pickles_are_alike_and_apart(noise):
    first = zvfilter.TemporalFilter(weight=0.25, tag="calm")
    for other in (copy.copy(first), copy.deepcopy(first), pickle.loads(pickle.dumps(first))):
        assert type(other) is zvfilter.TemporalFilter and other == first and other.tag == "calm"
        other.weight = 0.5
        assert other != first and first.weight == 0.25
    first(noise(seed=1))
    fresh = first.copy()
    assert np.array_equal(fresh(noise(seed=2)), zvfilter.TemporalFilter(weight=0.25)(noise(seed=2)))
    assert not np.array_equal(first(noise(seed=2)), noise(seed=2))
    first.reset()
    assert np.array_equal(first(noise(seed=2)), noise(seed=2))


def test_one_that_is_off_copies(noise):
    fill = zvfilter.HoleFillingFilter(enabled=False)
    made = fill(noise())
    assert np.array_equal(made, noise()) and not fill.enabled
    made[0, 0] = 7
    fill.enabled = True
    assert (fill(noise()) != noise()).any()
