// The tuner's view: colours, probe and points are those of the pixels, at any size of the window.
import assert from "node:assert/strict";
import {test} from "node:test";
import {barriers} from "../web/browser.mjs";
import {open} from "./browser.mjs";
import {place, tuner, useTuner} from "./setting.mjs";
import {startTuner} from "./tuner.mjs";

useTuner(["--chain", "chain.json", "rec", "--truth", "rec/truth"]);

test("colours, probe, divider and views are of the same pixels", async () => {
  place.zvfilter("run", "-f", "DisparityTransform:", "rec", "-o", "depth");
  const words = "--preset fill-holes depth/disparity_0000.png --value-scale 0.5 --camera none";
  const depth = await startTuner(place.folder, ...words.split(" "));
  const {page, settled, pixels, picture, close} = await open(depth, {
    hash: "&view=after&near=500&far=2500&colors=viridis"
  });
  const made = await pixels("after"),
    {colors: map, hole} = (await depth.send("/api/setup", {body: "{}"})).json.colors.maps[1];
  const box = await page.locator("#stage > canvas").boundingBox(),
    scale = box.width / 160;
  const spots = [
    [20, 30],
    [80, 50],
    [120, 20],
    [150, 90]
  ];
  const shot = (await page.screenshot({clip: box})).toString("base64");
  const seen = await page.evaluate(
    async ([data, places]) => {
      const image = await createImageBitmap(new Blob([Uint8Array.from(atob(data), (c) => c.charCodeAt(0))]));
      const context = Object.assign(document.createElement("canvas"), {
        width: image.width,
        height: image.height
      }).getContext("2d");
      context.drawImage(image, 0, 0);
      const {data: colors} = context.getImageData(0, 0, image.width, image.height);
      return places.map(([x, y]) => Array.from(colors.slice(4 * (y * image.width + x), 4 * (y * image.width + x) + 3)));
    },
    [shot, spots.map((spot) => spot.map((place) => Math.floor((place + 0.5) * scale)))]
  );
  spots.forEach(([x, y], i) => {
    const raw = made[160 * y + x],
      at = Math.round(Math.min(Math.max((raw / 2 - 500) / 2000, 0), 1) * 255);
    const wanted = raw === 0 ? hole : map.substr(6 * at, 6);
    assert.deepEqual(
      seen[i],
      [0, 2, 4].map((k) => parseInt(wanted.substr(k, 2), 16)),
      `at ${x}, ${y}`
    );
  });
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
  const divider = page.getByRole("slider", {name: "Divider"}),
    value = async () => Number(await divider.getAttribute("aria-valuenow"));
  await divider.focus();
  for (const key of ["ArrowRight", "PageUp"]) await page.keyboard.press(key);
  assert.equal(await value(), 61);
  const grip = await divider.boundingBox();
  await page.mouse.move(grip.x + grip.width / 2, grip.y + 20);
  await page.mouse.down();
  await page.mouse.move(box.x + 0.25 * box.width, grip.y + 40, {steps: 4});
  await page.mouse.up();
  assert.equal(await value(), 25);
  await picture("split");
  await page.keyboard.press("4");
  await page.keyboard.press("a");
  await page.locator("#legend", {hasText: "after − before"}).waitFor();
  await picture("difference");
  assert.equal(await page.locator("[value=cloud]").isDisabled(), true, "a PNG has no intrinsics");
  await settled();
  await close();
});

test("points in space come when they are asked for", async () => {
  const {page, requests, picture, close} = await open(tuner, {
    hash: '&chain=[{"filter":"DisparityTransform","values":{}}]'
  });
  assert.ok(!requests.includes("/points.js"));
  await page.keyboard.press("5");
  await page.locator(".cloud[data-points]").waitFor();
  assert.ok(requests.includes("/points.js"));
  const points = await page.evaluate(() => [
    +document.querySelector(".cloud").dataset.points,
    tuner.pixels("after").filter((raw) => raw > 0).length
  ]);
  assert.ok(points[0] > 8000);
  assert.equal(points[0], points[1]);
  await page.waitForTimeout(300);
  await picture("points");
  await close();
});

test("a build without the view of points says so", async () => {
  const {page, close} = await open(tuner, {
    hash: '&view=cloud&chain=[{"filter":"DisparityTransform","values":{}}]',
    setup: (setup) => ({...setup, points: false})
  });
  const points = page.locator("[value=cloud]");
  assert.equal(await points.isDisabled(), true);
  assert.match(await points.locator("xpath=ancestor::label").getAttribute("title"), /This build has no view of points/);
  assert.equal(await page.locator("[value=split]").isChecked(), true);
  await close();
});

for (const [name, options] of Object.entries({
  narrow: {viewport: {width: 400, height: 850}},
  wide: {viewport: {width: 1440, height: 900}},
  huge: {viewport: {width: 2560, height: 1440}},
  dark: {viewport: {width: 1440, height: 900}, colorScheme: "dark"}
})) {
  test(`nothing is cut off and everybody can use it: ${name}`, async () => {
    const {page, settled, picture, close} = await open(tuner, {...options, hash: "&chain=[]"});
    await page.locator("#preset").selectOption("fill-holes");
    await settled();
    await page.locator("#stage").focus();
    await page.keyboard.press("ArrowRight");
    await picture(name);
    const cut = await page.evaluate(() =>
      [...document.querySelectorAll("body *")]
        .filter((element) => {
          const box = element.getBoundingClientRect();
          return (
            box.width > 0 &&
            !element.closest(".stage, .unseen") &&
            (box.left < -0.5 || box.right > document.documentElement.clientWidth + 0.5)
          );
        })
        .map((element) => element.outerHTML.slice(0, 100))
    );
    assert.deepEqual(cut, []);
    assert.deepEqual(await barriers(page), []);
    await close();
  });
}
