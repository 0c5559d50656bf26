// The tuner's view: colours, probe and points are those of the pixels, at any size of the window.
import assert from "node:assert/strict";
import {test} from "node:test";
import {checkLayout, colorsOf, drag, windows} from "../web/browser.mjs";
import {zvfilter} from "../web/folder.mjs";
import {open} from "./browser.mjs";
import {startTuner, tuner, useTuner} from "./tuner.mjs";

useTuner(["--chain", "chain.json", "rec", "--truth", "rec/truth"]);

test("colours, probe, divider and views are of the same pixels", async () => {
  zvfilter("run", "-f", "DisparityTransform:", "rec", "-o", "depth");
  const words = "--preset fill-holes depth/disparity_0000.png --value-scale 0.5 --camera none";
  const depth = await startTuner(...words.split(" "));
  const {page, pixels, picture} = await open(depth, {hash: "&view=after&near=500&far=2500&colors=viridis"});
  const made = await pixels("after");
  const {colors: map, hole} = (await depth.send("/api/setup", {body: "{}"})).json.colors.maps[1];
  const box = await page.locator("#stage > canvas").boundingBox();
  const scale = box.width / 160;
  const shot = (await page.screenshot({clip: box})).toString("base64");
  const {width, text} = await colorsOf(page, `data:image/png;base64,${shot}`);
  const colors = text.split(",").map(Number);
  for (const [x, y] of [[20, 30], [80, 50], [120, 20], [150, 90]]) {
    const raw = made[160 * y + x];
    const index = Math.round(Math.min(Math.max((raw / 2 - 500) / 2000, 0), 1) * 255);
    const wanted = raw === 0 ? hole : map.substr(6 * index, 6);
    const at = 4 * (Math.floor((y + 0.5) * scale) * width + Math.floor((x + 0.5) * scale));
    assert.equal(Buffer.from(colors.slice(at, at + 3)).toString("hex"), wanted, `at ${x}, ${y}`);
  }
  // The probe, at a pixel by mouse and at others by keyboard.
  const input = await page.evaluate(() => {
    document.querySelector("[value=split]").click();
    return Array.from(tuner.pixels("before"));
  });
  const told = (raw) => (raw === 0 ? "0 (no depth)" : `${raw} (${+(raw / 2).toFixed(1)} mm)`);
  const check = async (x, y) => {
    const facts = await page.locator("#probe dd").allTextContents();
    const [a, b] = [input[160 * y + x], made[160 * y + x]];
    const change = a && b ? `${b > a ? "+" : ""}${String((b - a) / 2).replace("-", "−")} mm` : "–";
    assert.deepEqual(facts, [`x ${x}, y ${y}`, told(a), told(b), change]);
    const around = await page.locator("#probe .neighbours").nth(1).locator("td").allTextContents();
    assert.deepEqual(
      around,
      Array.from({length: 25}, (_, i) => String(made[160 * (y - 2 + Math.floor(i / 5)) + x - 2 + (i % 5)]))
    );
  };
  await page.mouse.move(box.x + 70.5 * scale, box.y + 40.5 * scale);
  await check(70, 40);
  await page.locator("#stage").focus();
  for (const key of ["Shift+ArrowRight", "ArrowDown", "+", "+", "ArrowRight"]) await page.keyboard.press(key);
  await check(81, 41);
  await page.keyboard.press("0");
  const divider = page.getByRole("slider", {name: "Divider"});
  const value = async () => Number(await divider.getAttribute("aria-valuenow"));
  await divider.focus();
  for (const key of ["ArrowRight", "PageUp"]) await page.keyboard.press(key);
  assert.equal(await value(), 61);
  const grip = await divider.boundingBox();
  await drag(page, [grip.x + grip.width / 2, grip.y + 20], [box.x + 0.25 * box.width, grip.y + 40]);
  assert.equal(await value(), 25);
  await picture("split");
  await page.keyboard.press("4");
  await page.keyboard.press("a");
  await page.locator("#legend", {hasText: "after − before"}).waitFor();
  await picture("difference");
  assert.equal(await page.locator("[value=cloud]").isDisabled(), true, "a PNG has no intrinsics");
});

test("points in space come when they are asked for, and a build without them says so", async () => {
  const {page, settled, picture} = await open(tuner, {hash: '&chain=[{"filter":"DisparityTransform","values":{}}]'});
  let asked = 0;
  await page.route("**/points.js", (route) => {
    ++asked;
    return route.continue();
  });
  await page.reload();
  await settled();
  assert.equal(asked, 0);
  await page.keyboard.press("5");
  await page.locator(".cloud[data-points]").waitFor();
  assert.equal(asked, 1);
  const [points, valid] = await page.evaluate(() => [
    +document.querySelector(".cloud").dataset.points,
    tuner.pixels("after").filter((raw) => raw > 0).length
  ]);
  assert.ok(points > 8000);
  assert.equal(points, valid);
  await page.waitForTimeout(300);
  await picture("points");

  await page.waitForFunction(() => location.hash.includes("view=cloud"));
  await page.route("**/api/setup", async (route) => {
    const response = await route.fetch();
    await route.fulfill({response, json: {...(await response.json()), points: false}});
  });
  await page.reload();
  const choice = page.locator("[value=cloud]");
  assert.equal(await choice.isDisabled(), true);
  assert.match(await choice.locator("xpath=ancestor::label").getAttribute("title"), /This build has no view of points/);
  assert.equal(await page.locator("[value=split]").isChecked(), true);
});

for (const [name, options] of Object.entries(windows)) {
  test(`nothing is cut off and everybody can use it: ${name}`, async () => {
    const {page, settled, picture} = await open(tuner, {...options, hash: "&chain=[]"});
    await page.locator("#preset").selectOption("fill-holes");
    await settled();
    await page.locator("#stage").focus();
    await page.keyboard.press("ArrowRight");
    await picture(name);
    await checkLayout(page, ".stage, .unseen");
  });
}
