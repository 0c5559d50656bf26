// The page of zvfilter run --report in a browser. Use: ZVFILTER=path/to/zvfilter node --test tests/report/
import assert from "node:assert/strict";
import {mkdirSync, readFileSync, statSync, writeFileSync} from "node:fs";
import {join} from "node:path";
import {after, before, test} from "node:test";
import {keepPicture, keepScreen, openPage} from "../web/browser.mjs";
import {makeFolder} from "../web/folder.mjs";

const width = 64, height = 40;
const {folder, zvfilter, remove} = makeFolder();
const page_file = (name) => "file://" + join(folder, name);

function write_pgm(file, pixel) {
  const bytes = Buffer.alloc(2 * width * height);
  for (let y = 0; y < height; ++y)
    for (let x = 0; x < width; ++x) bytes.writeUInt16BE(pixel(x, y), 2 * (y * width + x));
  writeFileSync(join(folder, file), Buffer.concat([Buffer.from(`P5\n${width} ${height}\n65535\n`), bytes]));
}

function read_pgm(file) {
  const bytes = readFileSync(join(folder, file));
  const [header, columns, rows] = bytes.toString("latin1").match(/^P5\s+(\d+)\s+(\d+)\s+65535\s/);
  return {width: +columns, height: +rows,
          at: (x, y) => bytes.readUInt16BE(header.length + 2 * (y * +columns + x))};
}

const open = (name, options) => openPage(page_file(name), {...options, own: (url) => url === page_file(name)});

before(() => {
  mkdirSync(join(folder, "in"));
  for (let i = 0; i < 5; ++i) {
    write_pgm(`in/${i}.pgm`, (x, y) => (x * 7 + y * 3 + i) % 11 === 0 ? 0 : 255 * x + 3 * y + 1000 + i);
  }
  zvfilter("run", "-f", "HoleFillingFilter:hole_filling_mode=2", "in", "-o", "far");
  const chain = ["-f", "HoleFillingFilter:hole_filling_mode=1", "-f", "TemporalFilter:",
                 "-f", `DepthResize:dst_width=${width / 2},dst_height=${height / 2},scale=0.5`];
  zvfilter("run", ...chain, "in", "-o", "out", "--value-scale", "0.25", "--report", "depth.html", "--report-frames", "2");
  zvfilter("run", ...chain.slice(0, 4), "in", "-o", "near", "--report", "two.html", "--against", "far");
  zvfilter("run", "-f", "DisparityTransform:", ...chain.slice(0, 4), "camera:frames=3,size=160x100", "-o", "made",
           "--report", "camera.html");
});

after(remove);

test("the divider follows the mouse, a finger and the keyboard", async () => {
  const {page, close} = await open("depth.html", {hasTouch: true});
  const view = page.locator(".hero .view"), divider = view.getByRole("slider");
  const box = await view.boundingBox();
  const place = async () => [Number(await divider.getAttribute("aria-valuenow")),
      Math.round(parseFloat(await view.evaluate((element) =>
          getComputedStyle(element.querySelector(".side.after")).clipPath.match(/([\d.]+)%/)?.[1] ?? "NaN")))];
  assert.deepEqual(await place(), [50, 50]);
  await page.mouse.move(box.x + box.width / 2, box.y + box.height / 2);
  await page.mouse.down();
  await page.mouse.move(box.x + box.width * 0.8, box.y + 20, {steps: 4});
  await page.mouse.up();
  assert.deepEqual(await place(), [80, 80]);
  const seen = (part) => page.evaluate(([x, y]) => document.elementFromPoint(x, y).parentElement.className,
                                       [box.x + box.width * part, box.y + box.height * 0.25]);
  assert.deepEqual([await seen(0.7), await seen(0.9)], ["side before", "side after"]);
  await page.mouse.move(box.x + 5, box.y + 5);
  assert.deepEqual(await place(), [80, 80], "only while it is dragged");

  const touch = await page.context().newCDPSession(page);
  const finger = (type, part) => touch.send("Input.dispatchTouchEvent", {
    type, touchPoints: part === undefined ? [] : [{x: box.x + box.width * part, y: box.y + box.height / 2}]});
  await finger("touchStart", 0.8);
  for (const part of [0.7, 0.5, 0.3]) await finger("touchMove", part);
  await finger("touchEnd");
  assert.deepEqual(await place(), [30, 30]);

  await divider.focus();
  const keys = {ArrowRight: 31, ArrowUp: 32, ArrowLeft: 31, PageDown: 21, PageUp: 31, Home: 0, ArrowDown: 0, End: 100};
  for (const [key, expected] of Object.entries(keys)) {
    await page.keyboard.press(key);
    assert.deepEqual(await place(), [expected, expected], key);
  }
  await close();
});

test("the probe says what the files hold", async () => {
  const {page, close} = await open("depth.html");
  const source = read_pgm("in/4.pgm"), result = read_pgm("out/4.pgm");
  const view = page.locator(".hero .view"), output = page.locator(".hero .probe");
  const box = await view.boundingBox();
  const minus = (number) => String(number).replace("-", "−");
  const told = (raw) => raw === 0 ? "0 (invalid)" : `${raw} (${raw / 4} mm)`;
  const expected = (x, y) => {
    const a = source.at(x, y), b = result.at(x >> 1, y >> 1);
    const difference = (b - a) / 4;
    return `x ${x}, y ${y}: before ${told(a)}, after ${told(b)}` +
        (a && b ? `, difference ${difference > 0 ? "+" : ""}${minus(difference)} mm` : "");
  };
  let invalid = 0;
  for (const [x, y] of [[0, 0], [63, 39], [63, 0], [11, 0], [30, 17], [1, 5], [41, 23], [2, 38]]) {
    await page.mouse.move(box.x + (x + 0.5) * box.width / width, box.y + (y + 0.5) * box.height / height);
    await page.waitForFunction(([element, start]) => element.textContent.startsWith(start),
                               [await output.elementHandle(), `x ${x}, y ${y}:`]);
    assert.equal(await output.textContent(), expected(x, y));
    invalid += source.at(x, y) === 0;
  }
  assert.ok(invalid > 0, "a hole is among them");

  await view.focus();
  for (const key of ["ArrowLeft", "ArrowLeft", "Shift+ArrowRight", "ArrowUp"]) await page.keyboard.press(key);
  await page.waitForFunction((element) => element.textContent.startsWith("x 10, y 37:"), await output.elementHandle());
  assert.equal(await output.textContent(), expected(10, 37));
  await close();
});

test("other colours are of the same pixels", async () => {
  const {page, close} = await open("camera.html");
  // What the pictures show, as one text.
  const shown = () => page.evaluate(async () => {
    const texts = [];
    for (const image of document.querySelectorAll("img[data-pixels]")) {
      const picture = new Image();
      picture.src = image.src;
      await picture.decode();
      const canvas = Object.assign(document.createElement("canvas"), {width: picture.width, height: picture.height});
      const context = canvas.getContext("2d");
      context.drawImage(picture, 0, 0);
      texts.push(context.getImageData(0, 0, picture.width, picture.height).data.join());
    }
    return texts;
  });
  const choose = async (name) => {
    await page.getByRole("radio", {name}).check();
    await page.waitForFunction((map) => document.documentElement.dataset.map === map, name);
  };
  const written = await shown();
  assert.ok(written.length >= 14, `${written.length} pictures`);
  await choose("grey");
  const grey = await shown();
  grey.forEach((text, i) => assert.notEqual(text, written[i]));
  await choose("turbo");
  assert.deepEqual(await shown(), written);
  await close();
});

test("it is readable without scripts", async () => {
  const {page, close} = await open("camera.html", {javaScriptEnabled: false});
  const [sources, plots] = [await page.locator("img").all(), await page.locator("svg.plot").count()];
  for (const image of sources) {
    assert.match(await image.getAttribute("src"), /^data:image\/png;base64,/);
    assert.ok((await image.getAttribute("alt")).length > 10);
  }
  assert.equal(plots, 5);
  const [first, second] = await Promise.all([".before", ".after"].map((side) =>
      page.locator(`.hero ${side} img`).boundingBox()));
  assert.ok(first.x + first.width <= second.x, "side by side");
  assert.equal(await page.getByRole("slider").count(), 0);
  assert.equal(await page.locator(".maps").count(), 0);
  await close();
});

test("another run stands beside this one", async () => {
  const {page, close} = await open("two.html");
  const text = await page.locator(".hero").innerText();
  assert.match(text, /Beside the results in far/);
  assert.match(text, /this run − the other/);
  let differ = 0;
  const [near, far] = [read_pgm("near/4.pgm"), read_pgm("far/4.pgm")];
  for (let y = 0; y < height; ++y) for (let x = 0; x < width; ++x) differ += near.at(x, y) !== far.at(x, y);
  assert.ok(differ > 0);
  const share = (100 * differ / (width * height)).toFixed(1);
  assert.match(text.replace(/\u202f/g, " "), new RegExp(`${share} % of the pixels differ`));
  await close();
});

test("its chain and its frames are those of the run", async () => {
  const {page, close} = await open("depth.html");
  const link = await page.getByRole("link", {name: "chain.json"}).getAttribute("href");
  const chain = Buffer.from(link.split(",")[1], "base64").toString();
  assert.equal(await page.locator("#chain").textContent(), chain);
  writeFileSync(join(folder, "chain.json"), chain);
  zvfilter("run", "--chain", "chain.json", "in", "-o", "again", "--value-scale", "0.25");
  assert.deepEqual(readFileSync(join(folder, "again/4.pgm")), readFileSync(join(folder, "out/4.pgm")));
  const headings = await page.locator("h3").allInnerTexts();
  for (const frame of ["Frame 0", "Frame 2"]) assert.ok(headings.some((text) => text.startsWith(frame)), frame);
  assert.ok(statSync(join(folder, "depth.html")).size < 10e6);
  await close();
});

for (const [name, options] of Object.entries({
  "400 pixels": {viewport: {width: 400, height: 800}},
  "1280 pixels": {viewport: {width: 1280, height: 800}},
  "3840 pixels": {viewport: {width: 3840, height: 2160}},
  "dark": {colorScheme: "dark"},
})) {
  test(`nothing is cut off or too faint: ${name}`, async () => {
    const {page, close} = await open("camera.html", options);
    const found = await page.evaluate(() => {
      const wide = document.documentElement.clientWidth;
      const cut = [...document.querySelectorAll("main *")].filter((element) => {
        const box = element.getBoundingClientRect();
        return box.width > 0 && !element.closest(".wide, pre, .divider") && (box.left < -0.5 || box.right > wide + 0.5);
      }).map((element) => element.outerHTML.slice(0, 80));
      const light = (css) => {
        const parts = css.match(/[\d.]+/g).slice(0, 3).map((part) => part / 255)
            .map((part) => part <= 0.04045 ? part / 12.92 : ((part + 0.055) / 1.055) ** 2.4);
        return 0.2126 * parts[0] + 0.7152 * parts[1] + 0.0722 * parts[2] + 0.05;
      };
      const paper = light(getComputedStyle(document.body).backgroundColor);
      const faint = [...document.querySelectorAll("p, dt, dd, td, th, a, small, h1, h2, h3, .ticks span, .plot text")]
          .filter((element) => {
            const style = getComputedStyle(element);
            const ink = light(element.closest("svg") ? style.fill : style.color);
            return Math.max(ink, paper) / Math.min(ink, paper) < 4.5;
          }).map((element) => element.outerHTML.slice(0, 80));
      const hero = document.querySelector(".hero .legend").getBoundingClientRect();
      return {cut, faint, below: hero.bottom - innerHeight};
    });
    assert.deepEqual(found.cut, []);
    assert.deepEqual(found.faint, []);
    assert.ok(found.below <= 0 || options.viewport?.width === 400, "the pair and its legend are on the first screen");
    await keepPicture(page, name.replace(" ", "_"));
    await close();
  });
}

test("on paper both pictures are whole", async () => {
  const {page, close} = await open("camera.html");
  await page.emulateMedia({media: "print"});
  const sides = await page.locator(".hero .side").evaluateAll((elements) => elements.map((element) => {
    const {left, right} = element.getBoundingClientRect();
    return {left, right, clip: getComputedStyle(element).clipPath};
  }));
  assert.deepEqual(sides.map((side) => side.clip), ["none", "none"]);
  assert.ok(sides[0].right <= sides[1].left);
  assert.equal(await page.locator(".divider:visible, button:visible, .probe:visible").count(), 0);
  const paper = await page.pdf({format: "A4"});
  keepScreen("paper.pdf", (path) => writeFileSync(path, paper));
  assert.ok(paper.length > 50_000, `${paper.length} bytes`);
  await close();
});
