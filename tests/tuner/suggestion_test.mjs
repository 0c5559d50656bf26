// Values that the tuner suggests. Use: ZVFILTER=path/to/zvfilter node --test tests/tuner/
import assert from "node:assert/strict";
import {readFileSync} from "node:fs";
import {after, before, test} from "node:test";
import {axe, launch, open} from "./browser.mjs";
import {makeFolder, startTuner, stopTuners} from "./tuner.mjs";

let place, tuner, browser;
const chain = [
  {filter: "DisparityTransform", values: {}},
  {filter: "SpatialAdvancedFilter", tag: "smooth", values: {alpha: 1, disp_diff: 1}}
];

before(async () => {
  place = makeFolder();
  place.zvfilter("camera", "-o", "rec", "--size", "96x64", "--frames", "12", "--noise", "2");
  tuner = await startTuner(place.folder, "rec");
  browser = await launch();
});

after(async () => {
  await browser?.close();
  await stopTuners();
  place?.remove();
});

test("a search answers with values, and there is one at a time", async () => {
  const ask = (wish) => tuner.send("/api/suggest", {body: JSON.stringify({chain, step: 1, seconds: 2, ...wish})});
  const [first, second] = await Promise.all([ask({}), ask({})]);
  const [answer, refused] = first.status === 200 ? [first, second] : [second, first];
  assert.equal(answer.status, 200);
  assert.equal(refused.status, 409);
  assert.match(refused.json.error, /a search is at work already/);
  assert.deepEqual(answer.json.chain[0].filter, "DisparityTransform");
  assert.notDeepEqual(answer.json.chain[1].values, chain[1].values, "no smoothing is not the best");
  assert.ok(answer.json.left < 1 && answer.json.sentences.length > 0);
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
  const {page, chain: shown, settled, picture, close} = await open(browser, tuner, {hash});
  await page.locator("#suggest-what").selectOption("1");
  const ask = page.getByRole("button", {name: "Look for values"});
  await ask.click();
  assert.equal(await ask.isDisabled(), true);
  await page.locator("#suggested table").waitFor({timeout: 60000});
  const rows = await page.locator("#suggested td").allTextContents();
  assert.ok(rows.some((text) => text.startsWith("smooth.")), rows.join());
  assert.deepEqual(await shown(), chain, "nothing changes by itself");
  await page.locator("#suggested").scrollIntoViewIfNeeded();
  await picture("suggested");
  await page.evaluate(readFileSync(axe, "utf8"));
  const {violations} = await page.evaluate(() => axe.run());
  assert.deepEqual(violations.map(({id}) => id), []);
  await page.getByRole("button", {name: "Use the suggested values"}).click();
  await settled();
  const taken = await shown();
  assert.notDeepEqual(taken[1].values, chain[1].values);
  assert.equal(await page.locator("#suggested table").count(), 0);
  await page.keyboard.press("Control+z");
  assert.deepEqual(await shown(), chain);
  await close();
});
