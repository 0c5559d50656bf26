// Pages in a browser, which starts with the first of them and ends with the tests. A test's pages end with it.
import assert from "node:assert/strict";
import {mkdirSync, readFileSync} from "node:fs";
import {createRequire} from "node:module";
import {join} from "node:path";
import {after, afterEach} from "node:test";

const modules = createRequire(new URL("../../web/package.json", import.meta.url));
const {chromium} = modules("playwright-core");
const axe = modules.resolve("axe-core");
const screens = process.env.SCREENSHOTS; // a folder for pictures of the pages, to look at

let browser;
const complaints = [];

afterEach(async () => {
  for (const context of (await browser)?.contexts() ?? []) await context.close();
  assert.deepEqual(complaints.splice(0), []);
});
after(async () => {
  await (await browser)?.close();
});

// The software renderer of a machine without graphics says so when a picture is read back.
const readBack = /GPU stall due to ReadPixels/;

// A page in a new window. What it says on the console but for what is `expected`, or asks for elsewhere, fails the test.
// `options` are of the window.
export async function openPage(address, {expected = readBack, ...options} = {}) {
  browser ??= chromium.launch({executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium", args: ["--no-sandbox"]});
  const context = await (await browser).newContext({viewport: {width: 1280, height: 800}, ...options});
  const page = await context.newPage();
  const {protocol, origin} = new URL(address);
  const home = protocol === "file:" ? address : `${origin}/`;
  page.on("console", (message) => {
    if (!expected.test(message.text())) complaints.push(message.text());
  });
  page.on("pageerror", (error) => complaints.push(error.stack));
  page.on("request", (request) => {
    if (!/^(data|blob):/.test(request.url()) && !request.url().startsWith(home)) complaints.push(request.url());
  });
  await page.goto(address);
  return page;
}

export async function drag(page, from, to) {
  await page.mouse.move(...from);
  await page.mouse.down();
  await page.mouse.move(...to, {steps: 5});
  await page.mouse.up();
}

// The colours of a picture, four numbers a pixel.
export const colorsOf = (page, source) =>
  page.evaluate(async (src) => {
    const picture = Object.assign(new Image(), {src});
    await picture.decode();
    const {width, height} = picture;
    const context = new OffscreenCanvas(width, height).getContext("2d");
    context.drawImage(picture, 0, 0);
    return {width, text: context.getImageData(0, 0, width, height).data.join()};
  }, source);

// Makes a file of `screens`, if there is such a folder.
export function keepScreen(name, make) {
  if (!screens) return null;
  mkdirSync(screens, {recursive: true});
  return make(join(screens, name));
}

export const keepPicture = (page, name) => keepScreen(`${name}.png`, (path) => page.screenshot({path, fullPage: true}));

export const windows = {
  narrow: {viewport: {width: 400, height: 850}},
  wide: {},
  huge: {viewport: {width: 3840, height: 2160}},
  dark: {colorScheme: "dark"}
};

// That nothing is cut off outside `spared`, and nobody is kept from using the page.
export async function checkLayout(page, spared) {
  await page.evaluate(readFileSync(axe, "utf8"));
  const found = await page.evaluate(async (spared) => {
    const {Color, getContrast} = axe.commons.color;
    const color = (css) => {
      const made = new Color();
      made.parseString(css);
      return made;
    };
    const paper = color(getComputedStyle(document.body).backgroundColor);
    // axe looks at no text of a plot.
    const isFaint = (text) => getContrast(color(getComputedStyle(text).fill), paper) < 4.5;
    const isCut = (element) => {
      const {left, right, width} = element.getBoundingClientRect();
      return width > 0 && !element.closest(spared) && (left < -0.5 || right > document.documentElement.clientWidth + 0.5);
    };
    const {violations} = await axe.run();
    const told = (elements) => elements.map((element) => element.outerHTML.slice(0, 100));
    return {
      barriers: violations.map(({id, nodes}) => `${id}: ${nodes[0].html}`),
      faint: told([...document.querySelectorAll("svg text")].filter(isFaint)),
      cut: told([...document.querySelectorAll("body *")].filter(isCut))
    };
  }, spared);
  assert.deepEqual(found, {barriers: [], faint: [], cut: []});
}
