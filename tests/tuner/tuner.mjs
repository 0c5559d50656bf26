// A running zvfilter tune and what tests ask of it.
import {spawn} from "node:child_process";
import {readFileSync} from "node:fs";
import http from "node:http";
import {tool} from "../web/folder.mjs";

// Samples of a 16-bit .npy file.
export function readNpy(file) {
  const bytes = readFileSync(file);
  const start = 10 + bytes.readUInt16LE(8);
  return new Uint16Array(bytes.buffer.slice(bytes.byteOffset + start, bytes.byteOffset + bytes.length));
}

const running = new Set();
export const stopTuners = () => Promise.all([...running].map((stop) => stop()));

export async function startTuner(folder, ...words) {
  const process = spawn(tool, ["tune", ...words], {cwd: folder});
  let said = "";
  process.stderr.on("data", (text) => {
    said += text;
  });
  const ended = new Promise((resolve) => process.on("exit", (code, signal) => resolve({code, signal, said})));
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
  const headers = {Host: host, Origin: origin, "X-Tuner-Token": token};
  // Any request; a header that is undefined is not sent.
  const send = (path, {method = "POST", body, ...changed} = {}) =>
    new Promise((resolve, reject) => {
      const all = {...headers, ...changed.headers};
      for (const name of Object.keys(all)) if (all[name] === undefined) delete all[name];
      const request = http.request(
        {host: "127.0.0.1", port, path, method, headers: all, agent: changed.agent},
        (answer) => {
          const parts = [];
          answer.on("data", (part) => parts.push(part));
          answer.on("end", () =>
            resolve({
              status: answer.statusCode,
              headers: answer.headers,
              bytes: Buffer.concat(parts),
              get text() {
                return this.bytes.toString();
              },
              get json() {
                return JSON.parse(this.text);
              }
            })
          );
          answer.on("error", reject);
        }
      );
      request.on("error", reject);
      request.end(body);
    });
  const stop = () => {
    process.kill("SIGINT");
    return ended;
  };
  running.add(stop);
  ended.then(() => running.delete(stop));
  return {address, origin, host, port: +port, token, headers, send, stop};
}

// A page without a browser.
export function makeClient(tuner, client) {
  let number = 0;
  const setup = tuner.send("/api/setup", {body: "{}"});
  return async (frame, chain, wishes = {}) => {
    const body = {
      client,
      number: ++number,
      frame,
      chain: chain ?? (await setup).json.chain,
      input: true,
      accuracy: false,
      tables: [],
      ...wishes
    };
    body.names ??= body.chain.map((_, i) => `s${i}`);
    const answer = await tuner.send("/api/frame", {body: JSON.stringify(body)});
    if (answer.status !== 200) return {status: answer.status, ...answer.json};
    const length = answer.bytes.readUInt32LE(0),
      header = JSON.parse(answer.bytes.toString("utf8", 4, 4 + length));
    let at = 4 + length;
    const parts = {};
    for (const {name, bytes} of header.parts) {
      parts[name] = answer.bytes.buffer.slice(answer.bytes.byteOffset + at, answer.bytes.byteOffset + at + bytes);
      at += (bytes + 3) & ~3;
    }
    return {status: 200, ...header, parts, after: new Uint16Array(parts.after)};
  };
}
