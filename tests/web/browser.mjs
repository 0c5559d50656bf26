// Pages in a browser, which starts with the first of them and ends with the tests.
import assert from "node:assert/strict";
import {mkdirSync, readFileSync} from "node:fs";
import {createRequire} from "node:module";
import {join} from "node:path";
import {after} from "node:test";

const modules = createRequire(new URL("../../web/package.json", import.meta.url));
const {chromium} = modules("playwright-core");
const axe = modules.resolve("axe-core");
const screens = process.env.SCREENSHOTS; // a folder for pictures of the pages, to look at

let browser;

after(async () => {
  await (await browser)?.close();
});

// A page in a new window. What it complains of on the console, or asks for though it is not its own, fails the test that closes it.
// `own(url)` says what is; `options` are of the window; `prepare(page)` is called before the page is loaded.
export async function openPage(address, {own, prepare, ...options}) {
  browser ??= chromium.launch({executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium", args: ["--no-sandbox"]});
  const context = await (await browser).newContext({viewport: {width: 1280, height: 800}, ...options});
  const page = await context.newPage();
  const complaints = [];
  page.on("console", (message) => {
    // The software renderer of a machine without graphics says so when a picture is read back.
    if (!message.text().includes("GPU stall due to ReadPixels")) complaints.push(message.text());
  });
  page.on("pageerror", (error) => complaints.push(error.stack));
  page.on("request", (request) => {
    if (!/^(data|blob):/.test(request.url()) && !own(request.url())) complaints.push(request.url());
  });
  await prepare?.(page);
  await page.goto(address);
  return {
    page,
    complaints,
    close: async () => {
      await context.close();
      assert.deepEqual(complaints, []);
    }
  };
}

// Makes a file of `screens`, if there is such a folder.
export function keepScreen(name, make) {
  if (!screens) return null;
  mkdirSync(screens, {recursive: true});
  return make(join(screens, name));
}

export const keepPicture = (page, name) => keepScreen(`${name}.png`, (path) => page.screenshot({path, fullPage: true}));

// What keeps people from using the page: `id: the first element`.
export async function barriers(page) {
  await page.evaluate(readFileSync(axe, "utf8"));
  const {violations} = await page.evaluate(() => globalThis.axe.run());
  return violations.map(({id, nodes}) => `${id}: ${nodes[0].html}`);
}
