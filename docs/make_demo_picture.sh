#!/usr/bin/env bash
# Makes docs/demo.png: the pair at the head of the demo's report, as a browser shows it. Run it after ./dev demo and ./dev browser.
set -euo pipefail
cd "$(dirname "$0")/.."
exec node --input-type=module - "$PWD/out/report.html" docs/demo.png <<'JS'
import {createRequire} from "node:module";
const {chromium} = createRequire(process.cwd() + "/web/package.json")("playwright-core");
const [page_file, picture] = process.argv.slice(2);
const browser = await chromium.launch({executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium", args: ["--no-sandbox"]});
const page = await browser.newPage({viewport: {width: 1280, height: 900}});
await page.goto("file://" + page_file);
// Side by side, as it is on paper.
await page.evaluate(() => {
  const pair = document.querySelector(".hero .pair");
  pair.classList.remove("divided");
  pair.closest(".row").style.display = "block";
  pair.querySelectorAll("figcaption, .divider, .cross").forEach((element) => element.remove());
});
await page.locator(".hero .pair").first().screenshot({path: picture});
await browser.close();
JS
