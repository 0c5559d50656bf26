"""Chains: their texts, their steps, their state."""

import json
import pickle

import jsonschema
import numpy as np
import pytest

import zvfilter
from conftest import REPOSITORY, STEPS


def test_steps_by_number_tag_filter_and_slice(chain):
    assert len(chain) == 6 and chain[-1].filter == "DepthResize" and chain["smooth"] == chain[2] == chain["SpatialAdvancedFilter"]
    assert [step.tag for step in chain[1:3]] == ["", "smooth"] and chain[2].alpha == 0.4
    chain["smooth"].alpha = 0.25
    chain[2].enabled = False
    assert repr(chain[2]) == "SpatialAdvancedFilter(alpha=0.25, tag='smooth', enabled=False)"
    for missing, kind in [("rough", KeyError), ("1", KeyError), (6, IndexError), (-7, IndexError)]:
        with pytest.raises(kind):
            chain[missing]
    for wrong in ("alfa", "tag", "values"):
        with pytest.raises(AttributeError):
            setattr(chain[2], wrong, 1)
    with pytest.raises(AttributeError, match="known: magnitude, alpha"):
        chain[2].alfa


def test_texts_and_files(chain, tmp_path):
    chain["smooth"].enabled = False
    chain.save(tmp_path / "chain.json")
    copies = [zvfilter.Chain.load(tmp_path / "chain.json"), zvfilter.Chain.parse(chain.to_json()), pickle.loads(pickle.dumps(chain)),
              chain.copy(), zvfilter.Chain(chain, input=chain.input), zvfilter.Chain([*chain[:3], *chain[3:]], input=chain.input)]
    assert all(copy == chain and copy.to_json() == chain.to_json() for copy in copies)
    for copy in copies:
        copy[3].weight = 0.5
    assert chain[3].weight == 0.3 and copies[0] != chain
    assert [step.as_made for step in zvfilter.Chain.parse("TemporalFilter; TemporalFilter:")] == [True, False]
    assert zvfilter.Chain.parse("") == zvfilter.Chain()


def test_filters_give_a_chain_their_values_not_themselves(noise):
    smooth = zvfilter.SpatialAdvancedFilter(alpha=0.3, tag="smooth", enabled=False)
    chain = zvfilter.Chain([smooth, zvfilter.DepthResize(scale=2)])
    smooth.alpha = 0.9
    assert chain["smooth"].alpha == 0.3 and not chain[0].enabled
    assert chain(noise()).shape == (96, 128)


def test_refusals_say_where(tmp_path, chain):
    with pytest.raises(zvfilter.InvalidError) as refusal:
        zvfilter.Chain(["TemporalFilter", "Foo"])
    assert (refusal.value.code, refusal.value.step, refusal.value.key) == (zvfilter.Code.BAD_CHAIN, 1, None)
    with pytest.raises(OSError) as refusal:
        zvfilter.Chain.load(tmp_path / "none.json")
    assert isinstance(refusal.value, zvfilter.Error) and refusal.value.code == zvfilter.Code.NO_FILE
    with pytest.raises(zvfilter.FileError):
        chain.save(tmp_path / "none" / "chain.json")
    with pytest.raises(TypeError, match="parse"):
        zvfilter.Chain("TemporalFilter")
    with pytest.raises(TypeError, match="a step is"):
        zvfilter.Chain([zvfilter.TemporalFilter])


def test_stages(chain, disparity):
    assert chain.stages == []
    made = chain(disparity[0], stages=True)
    assert [stage.name for stage in chain.stages] == [text.split(":")[0].split("=")[-1] for text in STEPS]
    assert chain.stages[2].tag == "smooth" and all(stage.milliseconds > 0 for stage in chain.stages)
    assert np.array_equal(chain.stages[-1].array, made)
    fresh = zvfilter.Chain(STEPS[:2], input=chain.input)
    assert np.array_equal(chain.stages[1].array, fresh(disparity[0]))
    kept = [stage.array.copy() for stage in chain.stages]
    old = chain.stages
    chain[1].enabled = False
    chain(disparity[1])
    assert all(stage.array is None for stage in chain.stages) and chain.stages[1].milliseconds == 0
    assert all(np.array_equal(*pair) for pair in zip(kept, [stage.array for stage in old]))
    chain.keep_stages = True
    chain(disparity[2])
    assert [stage.array is None for stage in chain.stages] == [False, True, False, False, False, False]


def test_streams_are_lazy_and_remember(chain, disparity):
    alone = [chain.copy()(frame) for frame in disparity]
    taken = []
    results = chain.stream(taken.append(number) or frame for number, frame in enumerate(disparity))
    first = next(results)
    assert taken == [0] and np.array_equal(first, alone[0])
    rest = list(results)
    assert len(rest) == 5 and not any(np.array_equal(*pair) for pair in zip(rest, alone[1:]))
    chain.reset()
    again = list(chain.stream(np.stack(disparity)))
    assert all(np.array_equal(*pair) for pair in zip(again, [first, *rest]))


def test_output_is_known_before_and_disturbs_nothing(chain, disparity):
    twin = chain.copy()
    results = []
    for frame in disparity[:3]:
        assert chain.output_for((400, 600)).shape == (200, 300)
        results.append(chain(frame))
    assert all(np.array_equal(*pair) for pair in zip(results, twin.stream(disparity)))
    output = chain.output_for(disparity[0].shape)
    assert output.shape == results[0].shape and output.input.pixel_type == "depth"
    with pytest.raises(zvfilter.InvalidError):
        chain.output_for((0, 5))


def test_the_schema_file_takes_what_the_library_takes(chain):
    schema = json.loads((REPOSITORY / "library/chain.schema.json").read_text())
    validator = jsonschema.validators.validator_for(schema)
    validator.check_schema(schema)
    valid = validator(schema).is_valid
    texts = [file.read_text() for file in sorted((REPOSITORY / "presets").glob("*.json"))]
    assert len(texts) > 3
    for text in [*texts, chain.to_json(), '{"version": 1, "steps": []}']:
        assert valid(json.loads(text)) and zvfilter.Chain.parse(text).to_json()

    def chain_of(filter="TemporalFilter", version=1, **fields):
        return {"version": version, "steps": [{"filter": filter, **fields}]}

    assert valid(chain_of(values={"weight": 0.3}, tag="calm", enabled=False))
    for wrong in [chain_of(version=2), chain_of("TemporalFilters"), chain_of(values={"wait": 0.3}), chain_of(values={"weight": 1.5}),
                  chain_of("HoleFillingFilter", values={"hole_filling_mode": 0.5}), chain_of(tags="calm"),
                  {"version": 1}, {"steps": []}, {**chain_of(), "input": {"pixel_typ": "depth"}}]:
        assert not valid(wrong), wrong
        with pytest.raises(ValueError):
            zvfilter.Chain.parse(json.dumps(wrong))
