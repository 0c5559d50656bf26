// How fast the page is on this machine: figures to look at, no limits.
import assert from "node:assert/strict";
import {test} from "node:test";
import {control, open} from "./browser.mjs";
import {place, useFolder} from "./setting.mjs";
import {startTuner} from "./tuner.mjs";

useFolder();

for (const size of ["640x400", "1280x720"]) {
  test(`a changed value and playing at ${size}`, async (t) => {
    place.zvfilter("camera", "-o", size, "--size", size, "--frames", "20");
    const tuner = await startTuner(place.folder, "--preset", "still-scene", size);
    const {page, settled, close} = await open(tuner, {hash: "&frame=18&view=after"});
    const times = [];
    await control(page, 2, "alpha").focus();
    for (let i = 0; i < 16; ++i) {
      await page.keyboard.press(i % 2 === 0 ? "ArrowRight" : "ArrowLeft");
      await settled();
      times.push(await page.evaluate(() => tuner.latency()));
    }
    times.sort((a, b) => a - b);
    assert.ok(times.every((time) => time > 0));
    const round = (value) => value.toFixed(0);
    t.diagnostic(
      `${size}: a changed value was seen after ${round(times[0])} to ${round(times.at(-1))} ms, median ${round(times[8])}`
    );
    for (const view of ["after", "split"]) {
      await page.evaluate((name) => document.querySelector(`[value=${name}]`).click(), view);
      const drawn = await page.evaluate(async () => {
        let frames = 0,
          drawn = 0,
          going = true;
        const count = () => {
          ++frames;
        };
        tuner.player.addEventListener("frame", count);
        tuner.player.play();
        await new Promise((resolve) => setTimeout(resolve, 1500));
        frames = 0;
        const start = performance.now();
        const tick = () => {
          ++drawn;
          if (going) requestAnimationFrame(tick);
        };
        requestAnimationFrame(tick);
        await new Promise((resolve) => setTimeout(resolve, 4000));
        going = false;
        tuner.player.pause();
        const seconds = (performance.now() - start) / 1000;
        return [frames / seconds, drawn / seconds];
      });
      assert.ok(drawn[0] > 0);
      t.diagnostic(
        `${size}, ${view}: ${drawn[0].toFixed(1)} frames a second played, ${drawn[1].toFixed(1)} pictures a second drawn`
      );
    }
    await close();
  });
}
