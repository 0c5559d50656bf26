// Values that the tuner suggests. Use: ZVFILTER=path/to/zvfilter node --test tests/tuner/
import assert from "node:assert/strict";
import {test} from "node:test";
import {checkLayout} from "../web/browser.mjs";
import {open} from "./browser.mjs";
import {tuner, useTuner} from "./tuner.mjs";

const chain = [
  {filter: "DisparityTransform", values: {}},
  {filter: "SpatialAdvancedFilter", tag: "smooth", values: {alpha: 1, disp_diff: 1}}
];

useTuner(["rec"], ["--size", "96x64", "--frames", "12", "--noise", "2"]);

test("a search answers with values, and there is one at a time", async () => {
  const ask = (wish) => tuner.send("/api/suggest", {body: JSON.stringify({chain, step: 1, seconds: 2, ...wish})});
  const answers = await Promise.all(Array.from({length: 6}, () => ask({})));
  const refused = answers.filter(({status}) => status === 409);
  assert.ok(refused.length > 0);
  assert.match(refused[0].json.error, /a search is at work already/);
  const answer = answers.find(({status}) => status === 200).json;
  assert.deepEqual(
    answer.chain.map(({filter, tag}) => [filter, tag]),
    chain.map(({filter, tag}) => [filter, tag])
  );
  assert.deepEqual(Object.keys(answer.chain[1].values).sort(), ["alpha", "disp_diff", "magnitude", "radius"]);
  // How good it is, and what there is to say of it, depends on how far the search gets.
  assert.ok(answer.left > 0, `left: ${answer.left}`);
  assert.equal(typeof answer.helps, "boolean");
  assert.ok(answer.sentences.every((sentence) => sentence.endsWith(".")));
  for (const [wish, error] of [
    [{seconds: 61}, /seconds: is 61; expected 1 to 60/],
    [{step: 2}, /step: is 2; the chain has 2 steps/],
    [{step: -1}, /step/],
    [{chain: [{filter: "Smooth"}], step: null}, /Smooth/],
    [{frames: 3}, /frames/]
  ]) {
    const {status, json} = await ask(wish);
    assert.equal(status, 422);
    assert.match(json.error, error);
  }
});

test("what is suggested stands beside the present values, can be taken and undone", async () => {
  const hash = `&chain=${encodeURIComponent(JSON.stringify(chain))}`;
  const {page, chain: shown, settled, picture} = await open(tuner, {hash});
  const found = [chain[0], {...chain[1], values: {alpha: 0.35, disp_diff: 1}}];
  let asked;
  await page.route("**/api/suggest", (route) => {
    asked = route.request().postDataJSON();
    return route.fulfill({json: {chain: found, helps: true, left: 0.5, sentences: ["smooth: without it they rise."]}});
  });
  await page.locator("#suggest-what").selectOption("1");
  const ask = page.getByRole("button", {name: "Look for values"});
  await ask.click();
  await page.locator("#suggested table").waitFor();
  assert.deepEqual(asked, {chain, step: 1, seconds: 5});
  assert.deepEqual(await page.locator("#suggested td").allTextContents(), ["smooth.alpha", "1", "0.35"]);
  assert.deepEqual(await shown(), chain, "nothing changes by itself");
  await page.locator("#suggested").scrollIntoViewIfNeeded();
  await picture("suggested");
  await checkLayout(page, ".stage, .unseen");
  await page.getByRole("button", {name: "Use the suggested values"}).click();
  await settled();
  assert.deepEqual(await shown(), found);
  assert.equal(await page.locator("#suggested table").count(), 0);
  await page.keyboard.press("Control+z");
  assert.deepEqual(await shown(), chain);
});
