// The tuner's page: what it shows is what the tool writes, and every part of it works by mouse and keyboard.
import assert from "node:assert/strict";
import {execFileSync} from "node:child_process";
import {delimiter, dirname} from "node:path";
import {test} from "node:test";
import {drag} from "../web/browser.mjs";
import {folder, readNpy, tool} from "../web/folder.mjs";
import {addStep, control, open} from "./browser.mjs";
import {made, tuner, useTuner} from "./tuner.mjs";

useTuner(["--chain", "chain.json", "rec", "--truth", "rec/truth"]);

test("a chain built by hand, saved and run by the tool gives the same pixels", async () => {
  const {page, settled, pixels, chain, picture} = await open(tuner);
  assert.equal(await page.locator("#empty").isVisible(), true);
  await picture("empty");
  for (const filter of ["DisparityTransform", "SpatialAdvancedFilter", "TemporalFilter"]) await addStep(page, filter);
  const {x, y, width, height} = await control(page, 1, "alpha").boundingBox();
  await drag(page, [x + width * 0.6, y + height / 2], [x + width * 0.2, y + height / 2]);
  const alpha = (await chain())[1].values.alpha;
  assert.ok(alpha > 0.15 && alpha < 0.4, `alpha ${alpha}`);
  await control(page, 2, "weight").focus();
  for (const key of ["Home", "ArrowRight", "ArrowRight"]) await page.keyboard.press(key);
  assert.equal((await chain())[2].values.weight, 0.12);
  await control(page, 1, "magnitude", "number").fill("3");
  await control(page, 1, "magnitude", "number").press("Enter");
  await page.locator("#stage").focus();
  for (let frame = 1; frame <= 3; ++frame) {
    await page.keyboard.press(".");
    await settled();
  }
  await page.keyboard.press("Control+s");
  await page.locator("output.said", {hasText: "saved into"}).waitFor();
  const wanted = made("chain.json", 0, 3);
  assert.deepEqual(await pixels("after"), wanted);
  assert.deepEqual(await pixels("before"), made("TemporalFilter:weight=1", 3, 3));
  assert.notDeepEqual(await pixels("before"), wanted);
  // The command that is copied, as a shell takes it.
  await page.getByRole("button", {name: "Copy the command"}).click();
  await page.locator("output.said", {hasText: "copied"}).waitFor();
  const command = await page.evaluate(() => navigator.clipboard.readText());
  const PATH = dirname(tool) + delimiter + process.env.PATH;
  execFileSync("sh", ["-c", `${command} --format npy`], {cwd: folder, env: {...process.env, PATH}});
  assert.deepEqual(readNpy("filtered/disparity_0003.npy"), wanted);
  await picture("built");
});

test("steps are moved, copied, switched off and removed, and all of it undone", async () => {
  const {page, chain} = await open(tuner, {hash: "&chain=[]"});
  const names = async () =>
    (await chain()).map(({filter, enabled}) => filter.slice(0, 4) + (enabled === false ? " off" : ""));
  for (const filter of ["DisparityTransform", "NoiseRemovalFilter", "HoleFillingFilter"]) await addStep(page, filter);
  const states = [await names()];
  const expect = async (...wanted) => {
    assert.deepEqual(await names(), wanted);
    states.push(wanted);
  };
  await page.locator(".handle").nth(2).focus();
  await page.keyboard.press("ArrowUp");
  await expect("Disp", "Hole", "Nois");
  await page.keyboard.press("ArrowUp");
  await expect("Hole", "Disp", "Nois");
  const from = await page.locator(".handle").nth(0).boundingBox();
  const to = await page.locator("#steps > li").nth(2).boundingBox();
  await drag(page, [from.x + 5, from.y + 5], [to.x + 20, to.y + 60]);
  await expect("Disp", "Nois", "Hole");
  await page.getByRole("button", {name: "Duplicate step 2"}).click();
  await expect("Disp", "Nois", "Nois", "Hole");
  await page.getByRole("checkbox", {name: "step 3"}).uncheck();
  await expect("Disp", "Nois", "Nois off", "Hole");
  await page.getByRole("button", {name: "Remove step 1"}).click();
  await expect("Nois", "Nois off", "Hole");
  await page.locator("#preset").selectOption("light");
  await expect("Disp", "Spat", "Temp");
  await control(page, 1, "alpha", "number").fill("0.7");
  await control(page, 1, "alpha", "number").press("Enter");
  assert.equal((await chain())[1].values.alpha, 0.7);
  await page.getByRole("button", {name: "Reset alpha"}).click();
  assert.deepEqual((await chain())[1].values, {});
  for (let i = 0; i < 2; ++i) await page.getByRole("button", {name: "Undo"}).click();
  for (const [button, passed] of [
    ["Undo", states.slice(0, -1).reverse()],
    ["Redo", states.slice(1)]
  ]) {
    for (const wanted of passed) {
      await page.getByRole("button", {name: button}).click();
      assert.deepEqual(await names(), wanted);
    }
  }
});

test("frames continue, a jump begins anew, and a change while paused is run up to", async () => {
  const {page, settled, chain} = await open(tuner, {
    hash: '&chain=[{"filter":"TemporalFilter","values":{"weight":0.2}}]'
  });
  const expectStatus = async (words) => {
    await settled();
    assert.match(await page.locator("#status").textContent(), words);
  };
  await page.keyboard.press(".");
  await expectStatus(/Frame 1 of 0 to 23.*seen frames 0 to 1/);
  await page.getByRole("slider", {name: "Frame"}).fill("20");
  await expectStatus(/Frame 20 .*began anew at frame 20/);
  await control(page, 0, "weight").focus();
  await page.keyboard.press("ArrowRight");
  await expectStatus(/seen frames 7 to 20, run up to it for the change/);
  await page.keyboard.press(" ");
  await page.waitForFunction(() => tuner.player.index === 23);
  await page.waitForFunction(() => tuner.player.index >= 1 && tuner.player.index < 20);
  await page.keyboard.press(" ");
  await expectStatus(/seen frames 0 to/);
  await page.reload();
  await settled();
  assert.deepEqual(await chain(), [{filter: "TemporalFilter", values: {weight: 0.21}}]);
});

test("what is wrong is said where it is", async () => {
  const {page, settled} = await open(tuner, {
    hash: '&chain=[{"filter":"HoleFillingFilter"},{"filter":"TemporalFilter","values":{"weight":7}}]',
    ready: false,
    expected: /422/
  });
  await page.getByRole("alert").filter({hasText: "weight"}).waitFor();
  assert.equal(await page.locator("#steps > li.wrong").count(), 1);
  const wrong = page.locator("#steps > li").nth(1).locator(".parameter.wrong");
  assert.equal(await wrong.getAttribute("data-key"), "weight");
  await control(page, 1, "weight", "number").fill("0.5");
  await control(page, 1, "weight", "number").press("Enter");
  await settled();
  assert.equal(await page.getByRole("alert").count(), 0);
  const stranger = await open({address: tuner.origin + "/#token=00"}, {ready: false, expected: /403/});
  await stranger.page.getByRole("alert").filter({hasText: "whole address"}).waitFor();
});
