// A folder of its own for the tests of a file, and the tool at work in it.
import {execFileSync} from "node:child_process";
import {mkdtempSync, rmSync} from "node:fs";
import {tmpdir} from "node:os";
import {join} from "node:path";

export const tool = process.env.ZVFILTER;

export function makeFolder() {
  const folder = mkdtempSync(join(tmpdir(), "zvfilter_web_"));
  return {
    folder,
    zvfilter: (...words) => execFileSync(tool, words, {cwd: folder, encoding: "utf8"}),
    remove: () => rmSync(folder, {recursive: true, force: true})
  };
}
