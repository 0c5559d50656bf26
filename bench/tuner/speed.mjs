// How fast the page is on this machine: figures to look at, no limits.
import assert from "node:assert/strict";
import {test} from "node:test";
import {zvfilter} from "../../tests/web/folder.mjs";
import {control, open} from "../../tests/tuner/browser.mjs";
import {startTuner} from "../../tests/tuner/tuner.mjs";

for (const size of ["640x400", "1280x720"]) {
  test(`a changed value and playing at ${size}`, async (t) => {
    zvfilter("camera", "-o", size, "--size", size, "--frames", "20");
    const tuner = await startTuner("--preset", "still-scene", size);
    const {page, settled} = await open(tuner, {hash: "&frame=18&view=after"});
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
      const [played, drawn] = await page.evaluate(async () => {
        const {player} = tuner;
        const pause = (milliseconds) => new Promise((resolve) => setTimeout(resolve, milliseconds));
        player.play();
        await pause(1500);
        let drawn = 0;
        const tick = () => {
          ++drawn;
          if (player.playing) requestAnimationFrame(tick);
        };
        tick();
        await pause(4000);
        const {rate} = player;
        player.pause();
        return [rate, drawn / 4];
      });
      assert.ok(played > 0);
      t.diagnostic(
        `${size}, ${view}: ${played.toFixed(1)} frames a second played, ${drawn.toFixed(1)} pictures a second drawn`
      );
    }
  });
}
