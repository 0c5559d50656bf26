// The tuner's page: what it shows is what the tool writes, and every part of it works by mouse and keyboard.
import assert from "node:assert/strict";
import {execFileSync} from "node:child_process";
import {readFileSync} from "node:fs";
import {delimiter, dirname, join} from "node:path";
import {test} from "node:test";
import {tool} from "../web/folder.mjs";
import {addStep, control, open} from "./browser.mjs";
import {place, tuner, useTuner} from "./setting.mjs";
import {readNpy} from "./tuner.mjs";

useTuner(["--chain", "chain.json", "rec", "--truth", "rec/truth"]);

// What the tool makes of some frames of the recording: the last of them.
function run(chain, frames, folder) {
  const files = frames.map((frame) => `rec/disparity_00${String(frame).padStart(2, "0")}.png`);
  place.zvfilter("run", "--chain", chain, ...files, "-o", folder, "--format", "npy");
  return readNpy(join(place.folder, folder, files.at(-1).replace("rec/", "").replace("png", "npy")));
}

test("a chain built by hand, saved and run by the tool gives the same pixels", async () => {
  const {page, settled, pixels, chain, picture, close} = await open(tuner);
  assert.equal(await page.locator("#empty").isVisible(), true);
  await picture("empty");
  for (const filter of ["DisparityTransform", "SpatialAdvancedFilter", "TemporalFilter"]) await addStep(page, filter);
  const slider = control(page, 1, "alpha"),
    box = await slider.boundingBox();
  await page.mouse.move(box.x + box.width * 0.6, box.y + box.height / 2);
  await page.mouse.down();
  await page.mouse.move(box.x + box.width * 0.2, box.y + box.height / 2, {steps: 5});
  await page.mouse.up();
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
  const wanted = run("chain.json", [0, 1, 2, 3], "built");
  assert.deepEqual(await pixels("after"), wanted);
  assert.notDeepEqual(wanted, await pixels("before"));
  await page.evaluate(() => document.querySelector("[value=before]").click());
  place.zvfilter("run", "-f", "TemporalFilter:weight=1", "rec/disparity_0003.png", "-o", "plain", "--format", "npy");
  assert.deepEqual(await pixels("before"), readNpy(join(place.folder, "plain/disparity_0003.npy")));
  // The command that is copied, as a shell takes it.
  await page.getByRole("button", {name: "Copy the command"}).click();
  await page.locator("output.said", {hasText: "copied"}).waitFor();
  const command = await page.evaluate(() => navigator.clipboard.readText());
  execFileSync("sh", ["-c", command], {
    cwd: place.folder,
    env: {...process.env, PATH: dirname(tool) + delimiter + process.env.PATH}
  });
  place.zvfilter("run", "--chain", "chain.json", "rec", "-o", "file");
  assert.deepEqual(
    readFileSync(join(place.folder, "filtered/disparity_0005.png")),
    readFileSync(join(place.folder, "file/disparity_0005.png"))
  );
  await picture("built");
  await close();
});

test("steps are moved, copied, switched off and removed, and all of it undone", async () => {
  const {page, chain, close} = await open(tuner, {hash: "&chain=[]"});
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
  const [from, to] = [
    await page.locator(".handle").nth(0).boundingBox(),
    await page.locator("#steps > li").nth(2).boundingBox()
  ];
  await page.mouse.move(from.x + 5, from.y + 5);
  await page.mouse.down();
  await page.mouse.move(to.x + 20, to.y + 60, {steps: 8});
  await page.mouse.up();
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
  for (const wanted of states.slice(0, -1).reverse()) {
    await page.getByRole("button", {name: "Undo"}).click();
    assert.deepEqual(await names(), wanted);
  }
  for (const wanted of states.slice(1)) {
    await page.getByRole("button", {name: "Redo"}).click();
    assert.deepEqual(await names(), wanted);
  }
  await close();
});

test("frames continue, a jump begins anew, and a change while paused is run up to", async () => {
  const {page, settled, pixels, status, close} = await open(tuner, {
    hash: '&chain=[{"filter":"TemporalFilter","values":{"weight":0.2}}]'
  });
  await page.keyboard.press(".");
  await settled();
  assert.match(await status(), /Frame 1 of 0 to 23.*seen frames 0 to 1/);
  await page.getByRole("slider", {name: "Frame"}).fill("20");
  await settled();
  assert.match(await status(), /Frame 20 .*began anew at frame 20/);
  assert.deepEqual(await pixels("after"), run("TemporalFilter:weight=0.2", [20], "anew"));
  await control(page, 0, "weight").focus();
  await page.keyboard.press("ArrowRight");
  await settled();
  assert.match(await status(), /seen frames 7 to 20, run up to it for the change/);
  assert.deepEqual(
    await pixels("after"),
    run(
      "TemporalFilter:weight=0.21",
      Array.from({length: 14}, (_, i) => 7 + i),
      "run_up"
    )
  );
  await page.keyboard.press(" ");
  await page.waitForFunction(() => tuner.player.index === 23);
  await page.waitForFunction(() => tuner.player.index >= 1 && tuner.player.index < 20);
  await page.keyboard.press(" ");
  await settled();
  assert.match(await status(), /seen frames 0 to/);
  await page.reload();
  await page.waitForFunction(() => globalThis.tuner?.player.rested);
  const kept = await page.evaluate(() => [tuner.chain.toFile(), location.hash]);
  assert.deepEqual(kept[0], [{filter: "TemporalFilter", values: {weight: 0.21}}]);
  await close();
});

test("what is wrong is said where it is", async () => {
  const bad = await open(tuner, {
    hash: '&chain=[{"filter":"HoleFillingFilter"},{"filter":"TemporalFilter","values":{"weight":7}}]',
    ready: false
  });
  await bad.page.getByRole("alert").filter({hasText: "weight"}).waitFor();
  assert.equal(await bad.page.locator("#steps > li.wrong").count(), 1);
  assert.equal(
    await bad.page.locator("#steps > li").nth(1).locator(".parameter.wrong").getAttribute("data-key"),
    "weight"
  );
  await control(bad.page, 1, "weight", "number").fill("0.5");
  await control(bad.page, 1, "weight", "number").press("Enter");
  await bad.settled();
  assert.equal(await bad.page.getByRole("alert").count(), 0);
  assert.ok(
    bad.complaints.every((text) => text.includes("422")),
    bad.complaints.join()
  );
  const stranger = await open({...tuner, address: tuner.origin + "/#token=00"}, {ready: false});
  await stranger.page.getByRole("alert").filter({hasText: "whole address"}).waitFor();
});
