// The tuner's page in a browser.
import {keepPicture, openPage} from "../web/browser.mjs";

// `setup` changes what the page is told at first.
export async function open(tuner, {hash = "", ready = true, setup = null, ...options} = {}) {
  const requests = [];
  const {page, complaints, close} = await openPage(tuner.address + hash, {
    viewport: {width: 1280, height: 900},
    permissions: ["clipboard-read", "clipboard-write"],
    ...options,
    own: (url) => new URL(url).origin === tuner.origin,
    prepare: async (page) => {
      page.on("request", (request) => requests.push(new URL(request.url()).pathname));
      if (!setup) return;
      await page.route("**/api/setup", async (route) => {
        const response = await route.fetch();
        await route.fulfill({response, json: setup(await response.json())});
      });
    }
  });
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
    picture: (name) => keepPicture(page, `tuner_${name}`),
    close
  };
}

export async function addStep(page, filter) {
  await page.locator("#filter").selectOption(filter);
  await page.getByRole("button", {name: "Add this filter at the end"}).click();
}

export const control = (page, step, key, kind = "range") =>
  page.locator("#steps > li").nth(step).locator(`.parameter[data-key=${key}] input[type=${kind}]`);
