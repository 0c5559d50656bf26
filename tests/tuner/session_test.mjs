// Which frames the filters of a page have seen. Use: ZVFILTER=path/to/zvfilter node --test tests/tuner/
import assert from "node:assert/strict";
import {test} from "node:test";
import {made, makeClient, useTuner} from "./tuner.mjs";

useTuner(["rec"]);

test("frames continue, begin anew and are run up to as they are said to", async () => {
  const show = makeClient("flow");
  const expectShown = async (frame, weight, first, restarted) => {
    const shown = await show(frame, [
      {filter: "DisparityTransform", values: {}},
      {filter: "TemporalFilter", values: {weight}}
    ]);
    assert.deepEqual([shown.first, shown.restarted], [first, restarted], `frame ${frame}, weight ${weight}`);
    assert.deepEqual(shown.after, made(`DisparityTransform:; TemporalFilter:weight=${weight}`, first, frame));
  };
  for (let frame = 0; frame <= 3; ++frame) await expectShown(frame, 0.3, 0, frame === 0);
  await expectShown(20, 0.3, 20, true);
  // The share of the first frame: 0.5 to the fifth is less than a twentieth.
  await expectShown(20, 0.5, 15, true);
  await expectShown(21, 0.5, 15, false);
  await expectShown(21, 0.1, 6, true);
  await expectShown(21, 1, 20, true);
});

test("a changed chain acts from the next frame on, and its steps remember", async () => {
  const show = makeClient("change");
  const steady = {filter: "TemporalFilter", values: {weight: 0.2}};
  const fill = {filter: "HoleFillingFilter", values: {}};
  const resize = {filter: "DepthResize", values: {scale: 0.5}};
  await show(0, [steady], {names: ["t"]});
  await show(1, [fill, steady], {names: ["f", "t"]});
  const swapped = await show(2, [steady, resize], {names: ["t", "r"]});
  assert.deepEqual([swapped.restarted, swapped.first, swapped.after.length], [false, 0, 80 * 50]);
  const anew = await makeClient("anew")(2, [steady, resize], {names: ["t", "r"]});
  assert.notDeepEqual(swapped.after, anew.after, "it remembers frames 0 and 1");
  const bad = await show(3, [{filter: "TemporalFilter", values: {weight: 7}}], {names: ["t"]});
  assert.deepEqual([bad.status, bad.step, bad.key], [422, 0, "weight"]);
  const again = await show(3, [steady, resize], {names: ["t", "r"]});
  assert.deepEqual([again.restarted, again.first], [false, 0], "what was refused changed nothing");
  assert.equal((await show(3, [steady], {names: ["t"], number: 1})).status, 409, "an old wish is dropped");
});
