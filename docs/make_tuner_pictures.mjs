// Makes the pictures of docs/tuner.md, with few colours so that they are small: it needs pngquant.
// Use: ZVFILTER=path/to/zvfilter node --test docs/make_tuner_pictures.mjs
import {execFileSync} from "node:child_process";
import {test} from "node:test";
import {fileURLToPath} from "node:url";
import {open} from "../tests/tuner/browser.mjs";
import {tuner, useTuner} from "../tests/tuner/tuner.mjs";
import {drag} from "../tests/web/browser.mjs";

useTuner(["--preset", "still-scene", "rec", "--truth", "rec/truth"], ["--size", "640x400", "--frames", "30"]);

for (const [name, key, options] of [
  ["tuner", "3", {viewport: {width: 1280, height: 860}}],
  ["tuner_difference", "4", {viewport: {width: 1000, height: 700}, colorScheme: "dark"}],
  ["tuner_points", "5", {viewport: {width: 1000, height: 700}}],
  ["tuner_narrow", "3", {viewport: {width: 400, height: 860}}]
]) {
  test(`the picture ${name}`, async () => {
    const {page, settled} = await open(tuner, {hash: "&frame=12", ...options});
    await page.keyboard.press(key);
    if (name === "tuner_points") {
      await page.locator(".cloud[data-points]").waitFor();
      const {x, y, width, height} = await page.locator("#stage").boundingBox();
      await drag(page, [x + width / 2, y + height / 2], [x + width / 2 - 90, y + height / 2 - 40]);
      await page.waitForTimeout(500);
    } else {
      await page.locator("#stage").focus();
      for (const step of ["Shift+ArrowRight", "Shift+ArrowDown"]) await page.keyboard.press(step);
      await page.locator("#stage").blur();
    }
    await settled();
    if (name === "tuner_narrow") await page.evaluate(() => scrollTo(0, 640));
    const picture = fileURLToPath(new URL(`${name}.png`, import.meta.url));
    await page.screenshot({path: picture});
    execFileSync("pngquant", ["--force", "--ext", ".png", "--speed", "1", "64", picture]);
  });
}
