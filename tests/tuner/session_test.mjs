// Which frames the filters of a page have seen. Use: ZVFILTER=path/to/zvfilter node --test tests/tuner/
import assert from "node:assert/strict";
import {readdirSync} from "node:fs";
import {join} from "node:path";
import {test} from "node:test";
import {place, tuner, useTuner} from "./setting.mjs";
import {makeClient, readNpy} from "./tuner.mjs";

useTuner(["rec"]);

test("frames continue, begin anew and are run up to as they are said to", async () => {
  const show = makeClient(tuner, "flow");
  const weight = (value) => [
    {filter: "DisparityTransform", values: {}},
    {filter: "TemporalFilter", values: {weight: value}}
  ];
  // What the tool makes of frames first to last, and of the last one.
  const made = (value, first, last) => {
    const files = Array.from(
      {length: last - first + 1},
      (_, i) => `rec/disparity_00${String(first + i).padStart(2, "0")}.png`
    );
    const folder = `flow_${value}_${first}_${last}`;
    place.zvfilter(
      "run",
      "-f",
      "DisparityTransform:",
      "-f",
      `TemporalFilter:weight=${value}`,
      ...files,
      "-o",
      folder,
      "--format",
      "npy"
    );
    return readNpy(
      join(
        place.folder,
        folder,
        readdirSync(join(place.folder, folder))
          .filter((name) => name.endsWith(".npy"))
          .sort()
          .at(-1)
      )
    );
  };
  let shown;
  for (let frame = 0; frame <= 3; ++frame) shown = await show(frame, weight(0.3));
  assert.deepEqual([shown.first, shown.restarted], [0, false]);
  assert.deepEqual(shown.after, made(0.3, 0, 3));
  shown = await show(20, weight(0.3));
  assert.deepEqual([shown.first, shown.restarted], [20, true]);
  assert.deepEqual(shown.after, made(0.3, 20, 20));
  // The share of the first frame: 0.5 to the fifth is less than a twentieth.
  shown = await show(20, weight(0.5));
  assert.deepEqual([shown.first, shown.restarted], [15, true]);
  assert.deepEqual(shown.after, made(0.5, 15, 20));
  shown = await show(21, weight(0.5));
  assert.deepEqual([shown.first, shown.restarted], [15, false]);
  assert.deepEqual(shown.after, made(0.5, 15, 21));
  for (const [value, first] of [
    [0.1, 6],
    [1, 20]
  ])
    assert.equal((await show(21, weight(value))).first, first, `weight ${value}`);
});

test("a changed chain acts from the next frame on, and its steps remember", async () => {
  const show = makeClient(tuner, "change");
  const steady = {filter: "TemporalFilter", values: {weight: 0.2}},
    fill = {filter: "HoleFillingFilter", values: {}};
  const resize = {filter: "DepthResize", values: {scale: 0.5}};
  await show(0, [steady], {names: ["t"]});
  await show(1, [fill, steady], {names: ["f", "t"]});
  const swapped = await show(2, [steady, resize], {names: ["t", "r"]});
  assert.deepEqual([swapped.restarted, swapped.first, swapped.after.length], [false, 0, 80 * 50]);
  const anew = await makeClient(tuner, "anew")(2, [steady, resize], {names: ["t", "r"]});
  assert.notDeepEqual(swapped.after, anew.after, "it remembers frames 0 and 1");
  const bad = await show(3, [{filter: "TemporalFilter", values: {weight: 7}}], {names: ["t"]});
  assert.equal(bad.status, 422);
  assert.deepEqual([bad.step, bad.key], [0, "weight"]);
  const again = await show(3, [steady, resize], {names: ["t", "r"]});
  assert.deepEqual([again.restarted, again.first], [false, 0], "what was refused changed nothing");
  assert.equal((await show(3, [steady], {names: ["t"], number: 1})).status, 409, "an old wish is dropped");
});
