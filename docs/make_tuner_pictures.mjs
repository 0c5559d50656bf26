// Makes the pictures of docs/tuner.md, with few colours so that they are small: it needs pngquant.
// Use: ZVFILTER=path/to/zvfilter node docs/make_tuner_pictures.mjs
import {execFileSync} from "node:child_process";
import {fileURLToPath} from "node:url";
import {launch, open} from "../tests/tuner/browser.mjs";
import {makeFolder, startTuner, stopTuners} from "../tests/tuner/tuner.mjs";

const place = makeFolder();
place.zvfilter("camera", "-o", "camera", "--size", "640x400", "--frames", "30");
const tuner = await startTuner(place.folder, "--preset", "still-scene", "camera", "--truth", "camera/truth");
const browser = await launch();
for (const [name, key, options] of [
  ["tuner", "3", {viewport: {width: 1280, height: 860}}],
  ["tuner_difference", "4", {viewport: {width: 1000, height: 700}, colorScheme: "dark"}],
  ["tuner_points", "5", {viewport: {width: 1000, height: 700}}],
  ["tuner_narrow", "3", {viewport: {width: 400, height: 860}}]
]) {
  const {page, settled, close} = await open(browser, tuner, {hash: "&frame=12", ...options});
  await page.keyboard.press(key);
  if (name === "tuner_points") {
    await page.locator(".cloud[data-points]").waitFor();
    const {x, y, width, height} = await page.locator("#stage").boundingBox();
    await page.mouse.move(x + width / 2, y + height / 2);
    await page.mouse.down();
    await page.mouse.move(x + width / 2 - 90, y + height / 2 - 40, {steps: 6});
    await page.mouse.up();
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
  await close();
}
await browser.close();
await stopTuners();
place.remove();
