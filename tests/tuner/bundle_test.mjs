// What is served is made of the sources that are there.
import assert from "node:assert/strict";
import {execFileSync} from "node:child_process";
import {readdirSync, readFileSync} from "node:fs";
import {join} from "node:path";
import {test} from "node:test";
import {fileURLToPath} from "node:url";
import {makeFolder} from "./tuner.mjs";

test("web/tuner/dist is what its build makes", () => {
  const web = fileURLToPath(new URL("../../web/tuner/", import.meta.url)),
    {folder, remove} = makeFolder();
  execFileSync(process.execPath, [join(web, "build.mjs"), folder]);
  const files = readdirSync(folder).sort();
  assert.deepEqual(readdirSync(join(web, "dist")).sort(), files);
  for (const file of files)
    assert.ok(
      readFileSync(join(folder, file)).equals(readFileSync(join(web, "dist", file))),
      `${file} is old; npm run build makes it`
    );
  remove();
});
