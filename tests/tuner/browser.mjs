// The tuner's page in a browser.
import assert from "node:assert/strict";
import {mkdirSync} from "node:fs";
import {createRequire} from "node:module";
import {join} from "node:path";

const modules = createRequire(new URL("../../web/package.json", import.meta.url));
const {chromium} = modules("playwright-core");
export const axe = modules.resolve("axe-core");
const screens = process.env.SCREENSHOTS; // a folder for pictures of the page, to look at

export const launch = () =>
  chromium.launch({executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium", args: ["--no-sandbox"]});

// A page in a new window. What it complains of on the console or asks for elsewhere fails the test that closes it.
// `setup` changes what the page is told at first.
export async function open(browser, tuner, {hash = "", ready = true, setup = null, ...options} = {}) {
  const context = await browser.newContext({
    viewport: {width: 1280, height: 900},
    permissions: ["clipboard-read", "clipboard-write"],
    ...options
  });
  const page = await context.newPage();
  const complaints = [],
    requests = [];
  page.on("console", (message) => {
    // The software renderer of a machine without graphics says so when a picture is read back.
    if (!message.text().includes("GPU stall due to ReadPixels")) complaints.push(message.text());
  });
  page.on("pageerror", (error) => complaints.push(error.stack));
  page.on("request", (request) => {
    requests.push(new URL(request.url()).pathname);
    if (new URL(request.url()).origin !== tuner.origin && !/^(data|blob):/.test(request.url()))
      complaints.push(request.url());
  });
  if (setup) {
    await page.route("**/api/setup", async (route) => {
      const response = await route.fetch();
      await route.fulfill({response, json: setup(await response.json())});
    });
  }
  await page.goto(tuner.address + hash);
  // When nothing is asked for any more.
  const settled = async () => {
    await page.waitForFunction(() => globalThis.tuner?.player.rested, null, {polling: 30});
  };
  if (ready) await settled();
  return {
    page,
    requests,
    settled,
    complaints,
    pixels: (side) =>
      page.evaluate((name) => Array.from(tuner.pixels(name)), side).then((values) => Uint16Array.from(values)),
    chain: () => page.evaluate(() => tuner.chain.toFile()),
    status: () => page.locator("#status").textContent(),
    picture: async (name) => {
      if (!screens) return;
      mkdirSync(screens, {recursive: true});
      await page.screenshot({path: join(screens, `tuner_${name}.png`), fullPage: true});
    },
    close: async () => {
      await context.close();
      assert.deepEqual(complaints, []);
    }
  };
}

export async function addStep(page, filter) {
  await page.locator("#filter").selectOption(filter);
  await page.getByRole("button", {name: "Add this filter at the end"}).click();
}

export const control = (page, step, key, kind = "range") =>
  page.locator("#steps > li").nth(step).locator(`.parameter[data-key=${key}] input[type=${kind}]`);
