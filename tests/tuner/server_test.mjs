// The server of zvfilter tune: what it refuses, what it survives and that its frames are the tool's.
// Use: ZVFILTER=path/to/zvfilter node --test tests/tuner/
import assert from "node:assert/strict";
import {existsSync, readFileSync, writeFileSync} from "node:fs";
import net from "node:net";
import {join} from "node:path";
import {test} from "node:test";
import {folder, readNpy, zvfilter} from "../web/folder.mjs";
import {made, makeClient, startTuner, tuner, useTuner} from "./tuner.mjs";

useTuner(["--chain=chain.json", "rec"]);

const connect = (port) =>
  new Promise((resolve) => {
    const socket = net.connect(port, "127.0.0.1", () => resolve(socket));
    socket.on("error", () => {});
  });

// What comes back, byte by byte, for a text and what follows later, until the server ends it or has been silent for a while.
// `cut` is who does not wait.
async function raw(text, {next = "", cut = false} = {}) {
  const socket = await connect(tuner.port);
  let answer = "";
  socket.on("data", (part) => {
    answer += part.toString("latin1");
  });
  setTimeout(() => socket.write(next), 300);
  socket.setTimeout(1500, () => socket.destroy());
  socket.write(text);
  if (cut) socket.resetAndDestroy();
  return new Promise((resolve) => {
    socket.on("close", () => resolve(answer));
  });
}

// The first lines of a request that is the page's own.
const head = () =>
  `POST /api/frame HTTP/1.1\r\nHost: ${tuner.host}\r\nOrigin: ${tuner.origin}\r\nX-Tuner-Token: ${tuner.token}\r\n`;

test("who is not the page is refused, and told why", async () => {
  const {host, origin} = tuner;
  const elsewhere = `http://127.0.0.1:${tuner.port + 1}`;
  const cases = [
    [{Host: "evil.example"}, /Host is not/],
    [{Host: `localhost:${tuner.port}`}, /Host is not/],
    [{Host: `${host}, evil.example`}, /Host is not/],
    [{Origin: "http://evil.example"}, /Origin is not/],
    [{Origin: elsewhere}, /Origin is not/],
    [{Origin: "null"}, /Origin is not/],
    [{Origin: origin.replace("http", "https")}, /Origin is not/],
    [{Origin: undefined}, /no Origin/],
    [{"X-Tuner-Token": undefined}, /no X-Tuner-Token/],
    [{"X-Tuner-Token": ""}, /X-Tuner-Token/],
    [{"X-Tuner-Token": tuner.token.slice(0, -1)}, /not that/],
    [{"X-Tuner-Token": tuner.token.replace(/.$/, (c) => (c === "0" ? "1" : "0"))}, /not that/],
    [{"X-Tuner-Token": [tuner.token, "x"]}, /not that/]
  ];
  // Forms that a page of another port posts.
  for (const type of ["application/x-www-form-urlencoded", "text/plain"])
    cases.push([{Origin: elsewhere, "X-Tuner-Token": undefined, "Content-Type": type}, /Origin is not/]);
  for (const path of ["/api/setup", "/api/frame", "/api/texts", "/api/save", "/api/none"]) {
    for (const [headers, reason] of cases) {
      const {status, json, headers: protect} = await tuner.send(path, {headers, body: '{"chain": []}'});
      assert.equal(status, 403, `${path} ${JSON.stringify(headers)}`);
      assert.match(json.error, reason);
      assert.match(protect["content-security-policy"], /default-src 'none'/);
    }
  }
  const parts = {Origin: elsewhere, "Content-Type": "multipart/form-data; boundary=x"};
  assert.equal((await tuner.send("/api/save", {headers: parts, body: "--x"})).status, 400);
  for (const headers of [{Host: "evil.example"}, {Origin: elsewhere}])
    assert.equal((await tuner.send("/", {method: "GET", headers})).status, 403);
  assert.equal((await tuner.send("/api/setup", {body: "{}"})).json.sequence.name, "rec", "the page itself is served");
  assert.ok(!existsSync(join(folder, "chain.json")), "nothing was saved");
});

test("only the page's own paths are there", async () => {
  const tricks = [
    "/rec/camera.json",
    "/../rec/camera.json",
    "/..%2frec/camera.json",
    "//rec/camera.json",
    "/tuner.js/../../etc/passwd",
    "/tuner.js%00.html",
    "/api/setup/",
    "http://evil.example/"
  ];
  for (const path of tricks) {
    for (const method of ["GET", "POST"]) {
      const answer = await tuner.send(path, {method});
      assert.ok([400, 404].includes(answer.status), `${method} ${path}: ${answer.status}`);
      assert.ok(answer.json.error.length > 0);
    }
  }
  for (const method of ["PUT", "DELETE", "OPTIONS", "PATCH", "TRACE"])
    assert.ok([400, 405].includes((await tuner.send("/", {method})).status), method);
  assert.equal((await tuner.send("/api/setup", {method: "GET"})).status, 404);
});

test("bodies over the limit and odd ones are refused", async () => {
  const sent = await tuner.send("/api/frame", {body: "x".repeat(70_000)});
  assert.equal(sent.status, 413);
  assert.match(sent.json.error, /65536/);
  const chunk = "10000\r\n" + "x".repeat(65536) + "\r\n";
  const chunked = await raw(head() + "Transfer-Encoding: chunked\r\n\r\n" + chunk + chunk + "0\r\n\r\n");
  assert.match(chunked, /^HTTP\/1.1 4\d\d/);
  // A body that nobody may send is not taken for a request of its own.
  const inside = `GET / HTTP/1.1\r\nHost: ${tuner.host}\r\n\r\n`;
  const refused = `POST /api/save HTTP/1.1\r\nHost: evil.example\r\nContent-Length: ${inside.length}\r\n\r\n`;
  const answers = await raw(refused, {next: inside});
  assert.equal(answers.match(/HTTP\/1.1 /g).length, 1, answers);
  for (const [body, problem] of [
    ["", /JSON|empty/],
    ["{}", /client/],
    ["[".repeat(60000), /deep|JSON/],
    ['{"client": 1}', /client/],
    ['{"client": "a", "number": 1, "frame": 24}', /frame: is 24; there are frames 0 to 23/]
  ]) {
    const answer = await tuner.send("/api/frame", {body});
    assert.equal(answer.status, 422, body.slice(0, 20));
    assert.match(answer.json.error, problem);
  }
});

test("slow ones, cut ones and many at once do no harm", async () => {
  const unfinished = head() + "Content-Length: 5000\r\n\r\n{";
  const others = Array.from({length: 40}, (_, i) => raw(unfinished, {cut: i % 2 === 0}));
  const chain = [{filter: "TemporalFilter", values: {weight: 0.2}}];
  const last = Array.from({length: 12}, async (_, i) => {
    const show = makeClient(`many ${i}`);
    for (let frame = 0; frame < 9; ++frame) assert.equal((await show(frame, chain)).status, 200);
    return show(9, chain);
  });
  const shown = await Promise.all(last);
  await Promise.all(others);
  const wanted = made("TemporalFilter:weight=0.2", 0, 9);
  for (const {after} of shown) assert.deepEqual(after, wanted);
});

test("the chain is saved into its file, whole", async () => {
  const chain = [{filter: "HoleFillingFilter", tag: "fill", values: {hole_filling_mode: 2}}];
  const body = JSON.stringify({chain});
  const {json} = await tuner.send("/api/texts", {body});
  assert.equal((await tuner.send("/api/save", {body})).status, 200);
  assert.equal(readFileSync(join(folder, "chain.json"), "utf8"), json.file);
  assert.match(json.command, /^zvfilter run --chain '?fill=HoleFillingFilter:hole_filling_mode=2'? rec -o filtered$/);
  const refused = await tuner.send("/api/save", {body: JSON.stringify({chain: [{filter: "HoleFilling"}]})});
  assert.equal(refused.status, 422);
  assert.match(refused.json.error, /HoleFillingFilter/);
  assert.equal(readFileSync(join(folder, "chain.json"), "utf8"), json.file);
  writeFileSync(join(folder, "told.json"), '{"version": 1, "description": "for the hall", "steps": []}');
  const told = await startTuner("--chain", "told.json", "rec");
  assert.equal((await told.send("/api/save", {body})).status, 200);
  assert.match(readFileSync(join(folder, "told.json"), "utf8"), /"description": "for the hall"[^]*HoleFillingFilter/);
});

test("the lines of Python say what the frames are", async () => {
  const chain = [{filter: "DisparityTransform", values: {}}];
  const {python} = (await tuner.send("/api/texts", {body: JSON.stringify({chain})})).json;
  assert.match(
    python,
    /^import zvfilter\n\nchain = zvfilter.Chain.parse\("""[^]*"""\)\nfiltered = chain\(zvfilter.read\(/
  );
  writeFileSync(join(folder, "python.json"), python.match(/"""([^]*)"""/)[1]);
  const frame = "rec/disparity_0000.png";
  zvfilter("run", "--chain", "python.json", "--camera", "none", frame, "-o", "bare", "--format", "npy");
  const {after} = await makeClient("python")(0, chain);
  assert.deepEqual(readNpy("bare/disparity_0000.npy"), after);
});

test("Ctrl-C ends it at once, whoever is connected", async () => {
  const {PATH} = process.env;
  process.env.PATH = folder; // where there is nothing that opens a browser
  const other = await startTuner("--open", "rec");
  process.env.PATH = PATH;
  const sockets = await Promise.all(Array.from({length: 5}, () => connect(other.port)));
  sockets[0].write("POST /api/frame HTTP/1.1\r\n");
  const {code, signal, said} = await other.stop();
  assert.deepEqual([code, signal], [0, null]);
  assert.match(said, /xdg-open is not there/);
  const taken = await startTuner("--port", String(tuner.port), "rec").catch((error) => error.message);
  assert.match(taken, /"code":1.*another program/);
});

test("what the tuner cannot show is refused before it serves", async () => {
  zvfilter("camera", "-o", "other", "--size", "160x100", "--frames", "1");
  const cases = [
    [["-"], 2, /-: the tuner goes back and forth/],
    [["rec", "other"], 2, /2 folders are as many sequences/],
    [["nothing"], 1, /nothing/],
    [["--set", "a.b=1", "rec"], 2, /there is no chain yet/],
    [["-f", "TemporalFilter:weight=7", "rec"], 2, /weight/],
    [["--port", "70000", "rec"], 2, /port/]
  ];
  for (const [words, status, problem] of cases) {
    const end = await startTuner(...words).catch((error) => error.message);
    assert.match(end, new RegExp(`"code":${status}`), words.join(" "));
    assert.match(end, problem);
  }
});
