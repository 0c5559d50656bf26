// The page of zvfilter run --report in a browser. Use: ZVFILTER=path/to/zvfilter node --test tests/report/
import assert from "node:assert/strict";
import {statSync, writeFileSync} from "node:fs";
import {join} from "node:path";
import {before, test} from "node:test";
import {checkLayout, colorsOf, drag, keepPicture, keepScreen, openPage, windows} from "../web/browser.mjs";
import {folder, readNpy, zvfilter} from "../web/folder.mjs";

const width = 64;
const height = 48;
const last = "disparity_0004.npy";
const open = (name, options) => openPage(`file://${join(folder, name)}`, options);

before(() => {
  const chain = ["-f", "HoleFillingFilter:hole_filling_mode=1", "-f", "TemporalFilter:"];
  const resize = ["-f", "DepthResize:scale=0.5", "--value-scale", "0.25", "--report-frames", "2"];
  for (const words of [
    ["-f", "DisparityTransform:", `camera:frames=5,size=${width}x${height}`, "-o", "in", "--format", "npy"],
    ["-f", "HoleFillingFilter:hole_filling_mode=2", "in", "-o", "far"],
    ["in", ...chain, ...resize, "-o", "out", "--report", "depth.html"],
    [...chain, "in", "-o", "near", "--report", "two.html", "--against", "far"],
    ["-f", "DisparityTransform:", ...chain, "camera:frames=3,size=160x100", "-o", "made", "--report", "camera.html"]
  ])
    zvfilter("run", ...words);
});

async function expectSideBySide(page) {
  const [first, second] = await Promise.all(
    ["before", "after"].map((side) => page.locator(`.hero .${side} img`).boundingBox())
  );
  assert.ok(first.x + first.width <= second.x);
}

test("the divider follows the mouse, a finger and the keyboard", async () => {
  const page = await open("depth.html", {hasTouch: true});
  const view = page.locator(".hero .view");
  const divider = view.getByRole("slider");
  const box = await view.boundingBox();
  const expectPlace = async (wanted, message) => {
    assert.equal(await divider.getAttribute("aria-valuenow"), String(wanted), message);
    const clip = await view.locator(".side.after").evaluate((side) => getComputedStyle(side).clipPath);
    assert.equal(Math.round(parseFloat(clip.match(/([\d.]+)%/)[1])), wanted, message);
  };
  await expectPlace(50);
  await drag(page, [box.x + box.width / 2, box.y + box.height / 2], [box.x + box.width * 0.8, box.y + 20]);
  await expectPlace(80);
  const seen = (part) =>
    page.evaluate(
      ([x, y]) => document.elementFromPoint(x, y).parentElement.className,
      [box.x + box.width * part, box.y + box.height * 0.25]
    );
  assert.deepEqual([await seen(0.7), await seen(0.9)], ["side before", "side after"]);
  await page.mouse.move(box.x + 5, box.y + 5);
  await expectPlace(80, "only while it is dragged");

  const touch = await page.context().newCDPSession(page);
  const finger = (type, ...parts) =>
    touch.send("Input.dispatchTouchEvent", {
      type,
      touchPoints: parts.map((part) => ({x: box.x + box.width * part, y: box.y + box.height / 2}))
    });
  await finger("touchStart", 0.8);
  for (const part of [0.7, 0.5, 0.3]) await finger("touchMove", part);
  await finger("touchEnd");
  await expectPlace(30);

  await divider.focus();
  const keys = {ArrowRight: 31, ArrowUp: 32, ArrowLeft: 31, PageDown: 21, PageUp: 31, Home: 0, ArrowDown: 0, End: 100};
  for (const [key, wanted] of Object.entries(keys)) {
    await page.keyboard.press(key);
    await expectPlace(wanted, key);
  }
});

test("the probe says what the files hold", async () => {
  const page = await open("depth.html");
  const source = readNpy(`in/${last}`);
  const result = readNpy(`out/${last}`);
  const view = page.locator(".hero .view");
  const box = await view.boundingBox();
  const told = (raw) => (raw === 0 ? "0 (invalid)" : `${raw} (${raw / 4} mm)`);
  const expectSaid = async (x, y) => {
    const a = source[width * y + x];
    const b = result[(width / 2) * (y >> 1) + (x >> 1)];
    const difference = `${b > a ? "+" : ""}${(b - a) / 4}`.replace("-", "−");
    const said = `x ${x}, y ${y}: before ${told(a)}, after ${told(b)}` + (a && b ? `, difference ${difference} mm` : "");
    await page.locator(".hero .probe", {hasText: `x ${x}, y ${y}:`}).waitFor();
    assert.equal(await page.locator(".hero .probe").textContent(), said);
  };
  const hole = source.lastIndexOf(0);
  assert.ok(hole > 0);
  for (const [x, y] of [[0, 0], [63, 47], [63, 0], [hole % width, Math.floor(hole / width)], [30, 17], [2, 46]]) {
    await page.mouse.move(box.x + ((x + 0.5) * box.width) / width, box.y + ((y + 0.5) * box.height) / height);
    await expectSaid(x, y);
  }
  await view.focus();
  for (const key of ["ArrowLeft", "ArrowLeft", "Shift+ArrowRight", "ArrowUp"]) await page.keyboard.press(key);
  await expectSaid(10, 45);
});

test("other colours are of the same pixels", async () => {
  const page = await open("camera.html");
  const shown = async () => {
    const sources = await page.locator("img[data-pixels]").evaluateAll((images) => images.map(({src}) => src));
    return Promise.all(sources.map(async (source) => (await colorsOf(page, source)).text));
  };
  const choose = async (name) => {
    await page.getByRole("radio", {name}).check();
    await page.locator(`html[data-map=${name}]`).waitFor();
  };
  const written = await shown();
  assert.ok(written.length >= 14, `${written.length} pictures`);
  await choose("grey");
  (await shown()).forEach((text, i) => assert.notEqual(text, written[i]));
  await choose("turbo");
  assert.deepEqual(await shown(), written);
});

test("it is readable without scripts", async () => {
  const page = await open("camera.html", {javaScriptEnabled: false});
  for (const image of await page.locator("img").all()) {
    assert.match(await image.getAttribute("src"), /^data:image\/png;base64,/);
    assert.ok((await image.getAttribute("alt")).length > 10);
  }
  assert.equal(await page.locator("svg.plot").count(), 5);
  await expectSideBySide(page);
  assert.equal(await page.locator("[role=slider], .maps").count(), 0);
});

test("another run stands beside this one", async () => {
  const page = await open("two.html");
  const text = await page.locator(".hero").innerText();
  assert.match(text, /this run − the other[^]*Beside the results in far/);
  const far = readNpy(`far/${last}`);
  const differ = readNpy(`near/${last}`).filter((raw, i) => raw !== far[i]).length;
  assert.ok(differ > 0);
  assert.ok(text.includes(`${((100 * differ) / far.length).toFixed(1)}\u202f% of the pixels differ`), text);
});

test("its chain and its frames are those of the run", async () => {
  const page = await open("depth.html");
  const link = await page.getByRole("link", {name: "chain.json"}).getAttribute("href");
  const chain = Buffer.from(link.split(",")[1], "base64").toString();
  assert.equal(await page.locator("#chain").textContent(), chain);
  writeFileSync(join(folder, "chain.json"), chain);
  zvfilter("run", "--chain", "chain.json", "in", "-o", "again", "--value-scale", "0.25");
  assert.deepEqual(readNpy(`again/${last}`), readNpy(`out/${last}`));
  for (const frame of ["Frame 0", "Frame 2"])
    assert.equal(await page.getByRole("heading", {name: frame, level: 3}).count(), 1);
  assert.ok(statSync(join(folder, "depth.html")).size < 10e6);
});

for (const [name, options] of Object.entries(windows)) {
  test(`nothing is cut off or too faint: ${name}`, async () => {
    const page = await open("camera.html", options);
    await checkLayout(page, ".wide, pre, .divider");
    const below = await page.evaluate(
      () => document.querySelector(".hero .legend").getBoundingClientRect().bottom - innerHeight
    );
    assert.ok(below <= 0 || name === "narrow", "the pair and its legend are on the first screen");
    await keepPicture(page, `report_${name}`);
  });
}

test("on paper both pictures are whole", async () => {
  const page = await open("camera.html");
  await page.emulateMedia({media: "print"});
  const clips = await page
    .locator(".hero .side")
    .evaluateAll((sides) => sides.map((side) => getComputedStyle(side).clipPath));
  assert.deepEqual(clips, ["none", "none"]);
  await expectSideBySide(page);
  assert.equal(await page.locator(".divider:visible, button:visible, .probe:visible").count(), 0);
  const paper = await page.pdf({format: "A4"});
  keepScreen("paper.pdf", (path) => writeFileSync(path, paper));
  assert.ok(paper.length > 50_000, `${paper.length} bytes`);
});
