// A folder of its own for the tests of a file, and the tool at work in it.
import {execFileSync} from "node:child_process";
import {mkdtempSync, readFileSync, rmSync} from "node:fs";
import {tmpdir} from "node:os";
import {join} from "node:path";
import {after} from "node:test";

export const tool = process.env.ZVFILTER;
export const folder = mkdtempSync(join(tmpdir(), "zvfilter_web_"));
export const zvfilter = (...words) => execFileSync(tool, words, {cwd: folder, encoding: "utf8"});

after(() => rmSync(folder, {recursive: true, force: true}));

// Samples of a 16-bit .npy file.
export function readNpy(file) {
  const bytes = readFileSync(join(folder, file));
  const start = 10 + bytes.readUInt16LE(8);
  return new Uint16Array(bytes.buffer.slice(bytes.byteOffset + start, bytes.byteOffset + bytes.length));
}
