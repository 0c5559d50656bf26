// A running zvfilter tune and what tests ask of it.
import {spawn} from "node:child_process";
import {once} from "node:events";
import http from "node:http";
import {after, before} from "node:test";
import {folder, readNpy, tool, zvfilter} from "../web/folder.mjs";

const stops = [];
after(() => Promise.all(stops.map((stop) => stop())));

export let tuner;

// Called once in a file, which has `tuner` while its tests run, at work on the recording rec/.
export function useTuner(words, camera = ["--size", "160x100", "--frames", "24"]) {
  before(async () => {
    zvfilter("camera", "-o", "rec", ...camera);
    tuner = await startTuner(...words);
  });
}

export async function startTuner(...words) {
  const process = spawn(tool, ["tune", ...words], {cwd: folder});
  let said = "";
  process.stderr.on("data", (text) => {
    said += text;
  });
  const ended = new Promise((resolve) => process.on("close", (code, signal) => resolve({code, signal, said})));
  const address = await new Promise((resolve, reject) => {
    let output = "";
    process.stdout.on("data", (text) => {
      output += text;
      const found = output.match(/http:\S+(?=\s)/);
      if (found) resolve(found[0]);
    });
    ended.then((end) => reject(new Error(`the tuner ended: ${JSON.stringify(end)}`)));
  });
  const {origin, host, port, hash} = new URL(address);
  const token = new URLSearchParams(hash.slice(1)).get("token");
  const own = {Host: host, Origin: origin, "X-Tuner-Token": token};
  // Any request; a header that is undefined is not sent.
  const send = async (path, {method = "POST", body, headers = {}} = {}) => {
    const sent = Object.entries({...own, ...headers}).filter(([, value]) => value !== undefined);
    const request = http.request({host: "127.0.0.1", port, path, method, headers: Object.fromEntries(sent)});
    request.on("error", () => {});
    request.end(body);
    const [answer] = await once(request, "response");
    const bytes = Buffer.concat(await answer.toArray());
    const json = answer.headers["content-type"] === "application/json" ? JSON.parse(bytes) : null;
    return {status: answer.statusCode, headers: answer.headers, bytes, json};
  };
  const stop = () => {
    process.kill("SIGINT");
    return ended;
  };
  stops.push(stop);
  return {address, origin, host, port: +port, token, send, stop};
}

// A page without a browser.
export function makeClient(client) {
  let number = 0;
  return async (frame, chain, wishes = {}) => {
    const names = chain.map((_, i) => `s${i}`);
    const body = {client, number: ++number, frame, chain, names, input: true, accuracy: false, tables: [], ...wishes};
    const {status, json, bytes} = await tuner.send("/api/frame", {body: JSON.stringify(body)});
    if (status !== 200) return {status, ...json};
    const length = bytes.readUInt32LE(0);
    const header = JSON.parse(bytes.toString("utf8", 4, 4 + length));
    let at = bytes.byteOffset + 4 + length;
    const parts = {};
    for (const {name, bytes: size} of header.parts) {
      parts[name] = bytes.buffer.slice(at, at + size);
      at += (size + 3) & ~3;
    }
    return {status, ...header, after: new Uint16Array(parts.after)};
  };
}

let runs = 0;

// What the tool makes of frames `first` to `last` of the recording: the last of them.
export function made(chain, first, last) {
  const names = Array.from({length: last - first + 1}, (_, i) => `disparity_${String(first + i).padStart(4, "0")}`);
  const results = `made_${++runs}`;
  zvfilter("run", "--chain", chain, ...names.map((name) => `rec/${name}.png`), "-o", results, "--format", "npy");
  return readNpy(`${results}/${names.at(-1)}.npy`);
}
