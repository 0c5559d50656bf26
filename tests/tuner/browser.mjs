// The tuner's page in a browser.
import {keepPicture, openPage} from "../web/browser.mjs";

export async function open(tuner, {hash = "", ready = true, ...options} = {}) {
  const page = await openPage(tuner.address + hash, {
    viewport: {width: 1280, height: 900},
    permissions: ["clipboard-read", "clipboard-write"],
    ...options
  });
  // When nothing is asked for any more.
  const settled = () => page.waitForFunction(() => globalThis.tuner?.player.rested, null, {polling: 30});
  if (ready) await settled();
  return {
    page,
    settled,
    pixels: async (side) => Uint16Array.from(await page.evaluate((name) => Array.from(tuner.pixels(name)), side)),
    chain: () => page.evaluate(() => tuner.chain.toFile()),
    picture: (name) => keepPicture(page, `tuner_${name}`)
  };
}

export async function addStep(page, filter) {
  await page.locator("#filter").selectOption(filter);
  await page.getByRole("button", {name: "Add this filter at the end"}).click();
}

export const control = (page, step, key, kind = "range") =>
  page.locator("#steps > li").nth(step).locator(`.parameter[data-key=${key}] input[type=${kind}]`);
