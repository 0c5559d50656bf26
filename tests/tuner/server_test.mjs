// The server of zvfilter tune: what it refuses, what it survives and that its frames are the tool's.
// Use: ZVFILTER=path/to/zvfilter node --test tests/tuner/
import assert from "node:assert/strict";
import {copyFileSync, existsSync, mkdirSync, readFileSync, writeFileSync} from "node:fs";
import net from "node:net";
import {join} from "node:path";
import {test} from "node:test";
import {place, tuner, useTuner} from "./setting.mjs";
import {makeClient, readNpy, startTuner} from "./tuner.mjs";

useTuner(["--chain", "chain.json", "rec"]);

// What is sent and comes back, byte by byte.
const raw = (text, {wait = 2000, slow = 0} = {}) =>
  new Promise((resolve) => {
    const socket = net.connect(tuner.port, "127.0.0.1");
    let answer = "";
    socket.setTimeout(wait, () => socket.destroy());
    socket.on("data", (part) => {
      answer += part.toString("latin1");
    });
    socket.on("error", () => {});
    socket.on("close", () => resolve(answer));
    if (!slow) {
      socket.write(text);
      return;
    }
    const send = (at) => {
      if (at < text.length && !socket.destroyed) {
        socket.write(text[at]);
        setTimeout(send, slow, at + 1);
      }
    };
    send(0);
  });

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
  for (const path of ["/api/setup", "/api/frame", "/api/texts", "/api/save", "/api/none"]) {
    for (const [headers, reason] of cases) {
      const {status, json, headers: protect} = await tuner.send(path, {headers, body: '{"chain": []}'});
      assert.equal(status, 403, `${path} ${JSON.stringify(headers)}`);
      assert.match(json.error, reason);
      assert.match(protect["content-security-policy"], /default-src 'none'/);
    }
  }
  for (const headers of [{Host: "evil.example"}, {Origin: elsewhere}])
    assert.equal((await tuner.send("/", {method: "GET", headers})).status, 403);
  assert.equal((await tuner.send("/api/setup", {body: "{}"})).status, 200, "the page itself is served");
  assert.ok(!existsSync(join(place.folder, "chain.json")), "nothing was saved");
});

test("a form posted from another port is refused", async () => {
  const body = "chain=%5B%5D";
  for (const type of ["application/x-www-form-urlencoded", "text/plain", "multipart/form-data; boundary=x"]) {
    const answer = await tuner.send("/api/save", {
      body,
      headers: {
        Origin: `http://127.0.0.1:${tuner.port + 1}`,
        "X-Tuner-Token": undefined,
        "Content-Type": type
      }
    });
    assert.equal(answer.status, 403, type);
  }
  assert.ok(!existsSync(join(place.folder, "chain.json")));
});

test("only the page's own paths are there", async () => {
  writeFileSync(join(place.folder, "secret.txt"), "secret");
  const tricks = [
    "/secret.txt",
    "/../secret.txt",
    "/..%2fsecret.txt",
    "//secret.txt",
    "/rec/camera.json",
    "/%2e%2e/%2e%2e/etc/passwd",
    "/./",
    "/tuner.js/../../etc/passwd",
    "/api",
    "/api/setup/",
    "/tuner.js%00.html",
    "/\\..\\secret.txt",
    "/index.html",
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
  const {Host, Origin} = tuner.headers;
  const head = `POST /api/frame HTTP/1.1\r\nHost: ${Host}\r\nOrigin: ${Origin}\r\nX-Tuner-Token: ${tuner.token}\r\n`;
  const chunk = "10000\r\n" + "x".repeat(65536) + "\r\n";
  assert.match(
    await raw(head + "Transfer-Encoding: chunked\r\n\r\n" + chunk + chunk + "0\r\n\r\n"),
    /^HTTP\/1.1 4\d\d/
  );
  // A body that nobody may send is not taken for a request of its own.
  const inside = `GET / HTTP/1.1\r\nHost: ${Host}\r\n\r\n`;
  const answers = await raw(
    `POST /api/save HTTP/1.1\r\nHost: evil.example\r\nContent-Length: ${inside.length}\r\n\r\n${inside}`
  );
  assert.equal(answers.match(/HTTP\/1.1 /g).length, 1, answers);
  for (const [body, problem] of [
    ["", /JSON|empty/],
    ["[]", /object/],
    ["{", /JSON/],
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
  const {Host, Origin} = tuner.headers;
  const head = `POST /api/frame HTTP/1.1\r\nHost: ${Host}\r\nOrigin: ${Origin}\r\nX-Tuner-Token: ${tuner.token}\r\n`;
  const slow = Array.from({length: 20}, () => raw(head + "Content-Length: 5000\r\n\r\n{", {slow: 100, wait: 1500}));
  const cut = Array.from(
    {length: 20},
    () =>
      new Promise((resolve) => {
        const socket = net.connect(tuner.port, "127.0.0.1", () => {
          socket.write(head + "Content-Length: 5000\r\n\r\n{");
          socket.resetAndDestroy();
        });
        socket.on("error", () => {});
        socket.on("close", resolve);
      })
  );
  const chain = [{filter: "TemporalFilter", values: {weight: 0.2}}];
  const sequences = await Promise.all(
    Array.from({length: 12}, async (_, i) => {
      const show = makeClient(tuner, `many ${i}`),
        frames = [];
      for (let frame = 0; frame < 10; ++frame) frames.push(await show(frame, chain));
      return frames;
    })
  );
  await Promise.all([...slow, ...cut]);
  place.zvfilter("run", "-f", "TemporalFilter:weight=0.2", "rec", "-o", "temporal", "--format", "npy");
  const wanted = readNpy(join(place.folder, "temporal", "disparity_0009.npy"));
  for (const frames of sequences) {
    assert.ok(frames.every((frame) => frame.status === 200));
    assert.deepEqual(frames[9].after, wanted);
  }
});

test("the chain is saved into its file, whole", async () => {
  const chain = [{filter: "HoleFillingFilter", tag: "fill", values: {hole_filling_mode: 2}}];
  const body = JSON.stringify({chain});
  const {json} = await tuner.send("/api/texts", {body});
  assert.equal((await tuner.send("/api/save", {body})).status, 200);
  assert.equal(readFileSync(join(place.folder, "chain.json"), "utf8"), json.file);
  assert.match(json.command, /^zvfilter run --chain '?fill=HoleFillingFilter:hole_filling_mode=2'? rec -o filtered$/);
  const refused = await tuner.send("/api/save", {body: JSON.stringify({chain: [{filter: "HoleFilling"}]})});
  assert.equal(refused.status, 422);
  assert.match(refused.json.error, /HoleFillingFilter/);
  assert.equal(readFileSync(join(place.folder, "chain.json"), "utf8"), json.file);
});

test("the lines of Python say what the frames are", async () => {
  const chain = [{filter: "DisparityTransform", values: {}}];
  const {python} = (await tuner.send("/api/texts", {body: JSON.stringify({chain})})).json;
  assert.match(
    python,
    /^import zvfilter\n\nchain = zvfilter.Chain.parse\("""[^]*"""\)\nfiltered = chain\(zvfilter.read\(/
  );
  // Where no camera.json is beside them.
  mkdirSync(join(place.folder, "bare"));
  copyFileSync(join(place.folder, "rec/disparity_0000.png"), join(place.folder, "bare/0.png"));
  writeFileSync(join(place.folder, "python.json"), python.match(/"""([^]*)"""/)[1]);
  place.zvfilter("run", "--chain", "python.json", "bare", "-o", "from_bare", "--format", "npy");
  const {after} = await makeClient(tuner, "python")(0, chain);
  assert.deepEqual(readNpy(join(place.folder, "from_bare/0.npy")), after);
});

test("Ctrl-C ends it at once, whoever is connected", async () => {
  const other = await startTuner(place.folder, "rec");
  const sockets = await Promise.all(
    Array.from(
      {length: 5},
      () =>
        new Promise((resolve) => {
          const socket = net.connect(other.port, "127.0.0.1", () => resolve(socket));
          socket.on("error", () => {});
        })
    )
  );
  sockets[0].write("POST /api/frame HTTP/1.1\r\n");
  const {code, signal} = await other.stop();
  assert.deepEqual([code, signal], [0, null]);
  const taken = await startTuner(place.folder, "--port", String(tuner.port), "rec").catch((error) => error.message);
  assert.match(taken, /"code":1.*another program/);
});

test("what the tuner cannot show is refused before it serves", async () => {
  place.zvfilter("camera", "-o", "other", "--size", "160x100", "--frames", "1");
  const cases = [
    [["-"], 2, /-: the tuner goes back and forth/],
    [["rec", "other"], 2, /2 folders are as many sequences/],
    [["nothing"], 1, /nothing/],
    [["--preset", "still", "rec"], 2, /did you mean still-scene/],
    [["--set", "a.b=1", "rec"], 2, /there is no chain yet/],
    [["--chain", "HoleFillingFilter:mode=1", "rec"], 2, /hole_filling_mode/],
    [["--port", "70000", "rec"], 2, /port/]
  ];
  for (const [words, status, problem] of cases) {
    const end = await startTuner(place.folder, ...words).catch((error) => error.message);
    assert.match(end, new RegExp(`"code":${status}`), words.join(" "));
    assert.match(end, problem);
  }
});
