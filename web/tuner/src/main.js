// The page of zvfilter tune.
import {readAddress, writeAddress} from "./address.js";
import {Chain} from "./chain.js";
import {ChainPanel} from "./chain_panel.js";
import {button, byId, element, throttled} from "./dom.js";
import {showFigures} from "./figures.js";
import {Player} from "./player.js";
import {Server} from "./server.js";
import {View} from "./view.js";

const kept = readAddress();
const server = new Server(kept.token);

function complain(problem) {
  byId("problem").textContent = problem ? problem.message : "";
  byId("problem").hidden = !problem;
}

function start(setup) {
  const {sequence} = setup;
  document.title = `${sequence.name} – tuner`;
  byId("input").textContent = sequence.name;
  const chain = new Chain(kept.chain ?? setup.chain);
  const panel = new ChainPanel(chain, setup);
  const view = new View(setup, kept);
  const player = new Player(sequence.labels.length, (index, accuracy) => server.frame(index, chain.steps, accuracy));
  let shown = null, accuracy = null, changed = null, latency = null;

  const keep = throttled(300, () => writeAddress({token: kept.token, ...view.state, frame: player.index, chain: chain.toFile()}));
  const figures = () => shown && showFigures(byId("figures"), shown, {truth: sequence.truth, accuracy, rate: player.playing ? player.rate : null, latency});
  function tell() {
    seek.value = shown.frame;
    place.textContent = `${shown.frame} / ${player.count - 1}`;
    tellState(shown);
    figuresSoon();
  }
  const figuresSoon = throttled(150, () => {
    figures();
    panel.showFigures(shown.steps);
  });
  // Laying the page out anew takes longer than a frame.
  const tellSoon = throttled(250, tell);

  function tellState({frame, first, restarted}) {
    const filters = chain.steps.some((step) => step.enabled);
    const from = first < frame ? `the filters have seen frames ${first} to ${frame}` : `the filters began anew at frame ${frame}`;
    const why = restarted && first < frame ? `, run up to it for the change` : "";
    byId("status").textContent = `Frame ${frame} of 0 to ${player.count - 1}, ${sequence.labels[frame]}${filters ? `: ${from}${why}` : ""}.`;
  }

  player.addEventListener("frame", ({detail: frame}) => {
    shown = frame;
    accuracy = null;
    view.show(frame);
    complain(null);
    panel.showProblem(-1);
    if (changed !== null) {
      const since = changed;
      changed = null;
      requestAnimationFrame(() => { latency = performance.now() - since; });
    }
    if (player.playing) tellSoon();
    else tell();
    keep();
  });
  player.addEventListener("rest", ({detail: frame}) => {
    accuracy = frame.accuracy ?? null;
    figures();
  });
  player.addEventListener("problem", ({detail: problem}) => {
    complain(problem);
    panel.showProblem(problem.step ?? -1, problem.key);
  });
  let asked = JSON.stringify(chain.toFile());
  chain.addEventListener("change", () => {
    const text = JSON.stringify(chain.toFile());
    if (text !== asked) {
      asked = text;
      changed ??= performance.now();
      player.refresh();
    }
    undo.disabled = !chain.canUndo;
    redo.disabled = !chain.canRedo;
    keep();
  });
  view.addEventListener("change", keep);

  // The sequence.
  const play = button("Play", "Play or pause (space)", () => player.toggle(), {className: "play"});
  const seek = element("input", {type: "range", min: 0, max: player.count - 1, step: 1, value: 0, oninput: () => player.seek(+seek.value)});
  seek.setAttribute("aria-label", "Frame");
  const place = element("output", {className: "place"});
  player.addEventListener("state", () => { play.textContent = player.playing ? "Pause" : "Play"; });
  byId("player").append(play, button("◂", "One frame back (,)", () => player.step(-1)), button("▸", "One frame on (.)", () => player.step(1)), seek, place);

  // The chain as a whole.
  const said = element("output", {className: "said"});
  let forget = null;
  const say = (text) => {
    said.textContent = text;
    clearTimeout(forget);
    forget = setTimeout(() => { said.textContent = ""; }, 4000);
  };
  const doing = (work) => async () => {
    try {
      say(await work());
    } catch (problem) {
      complain(problem);
    }
  };
  const copy = (what) => doing(async () => {
    await navigator.clipboard.writeText((await server.texts(chain.toFile()))[what]);
    return "copied";
  });
  const undo = button("Undo", "Undo (Ctrl+Z)", () => chain.undo(), {disabled: true});
  const redo = button("Redo", "Redo (Ctrl+Shift+Z)", () => chain.redo(), {disabled: true});
  const download = doing(async () => {
    const {file} = await server.texts(chain.toFile());
    const link = element("a", {href: URL.createObjectURL(new Blob([file], {type: "application/json"})), download: "chain.json"});
    link.click();
    setTimeout(() => URL.revokeObjectURL(link.href), 1000);
    return "downloaded";
  });
  byId("actions").append(said, undo, redo,
      ...(setup.chainFile ? [button("Save", `Save the chain into ${setup.chainFile} (Ctrl+S)`, doing(async () => `saved into ${(await server.save(chain.toFile())).file}`))] : []),
      button("Download", "Download the chain as chain.json", download), button("Copy command", "Copy the command that runs this chain", copy("command")),
      button("Copy Python", "Copy lines of Python that run this chain", copy("python")));

  // Keys.
  const save = byId("actions").querySelector("[aria-label^=Save]");
  const keys = [[" ", "space", "play or pause", () => player.toggle()], [",", ",", "one frame back", () => player.step(-1)], [".", ".", "one frame on", () => player.step(1)],
                ...["before", "after", "split", "difference", "cloud"].map((kind, i) => [String(i + 1), String(i + 1), kind === "cloud" ? "points" : kind, () => view.kinds.choose(kind)]),
                ["a", "A", "fit the colours to this frame", () => view.fitColors()], ["0", "0", "show the whole picture", () => view.viewport.fit()]];
  const withControl = {z: () => chain.undo(), Z: () => chain.redo(), y: () => chain.redo(), s: () => save?.click()};
  byId("keys").append(...[...keys.map(([, name, text]) => [name, text]), ["Ctrl+Z, Ctrl+Shift+Z", "undo, redo"], ["Ctrl+S", "save, if there is a file"],
                          ["+ and −, wheel", "zoom"], ["arrow keys on the picture", "move the probe"]].flatMap(([name, text]) => [element("dt", {}, name), element("dd", {}, text)]));
  addEventListener("keydown", (event) => {
    const typing = event.target.matches("input:not([type=range], [type=checkbox], [type=radio]), select, textarea");
    const action = event.ctrlKey || event.metaKey ? withControl[event.key] : keys.find(([key]) => key === event.key.toLowerCase())?.[3];
    if (!action || event.altKey || (typing && !(event.ctrlKey && event.key === "s")) || (event.key === " " && event.target.matches("button, summary, input[type=checkbox], input[type=radio]"))) return;
    event.preventDefault();
    action();
  });

  // For who looks at the page's exact pixels.
  globalThis.tuner = {pixels: (side) => view.renderer.readTexture(side), player, chain, get latency() { return latency; }};
  player.seek(kept.frame ?? 0);
}

server.setup().then(start).catch((problem) => complain(problem.status === 403
    ? new Error(`${problem.message}. Open the whole address that the program has printed, with what stands behind the #.`) : problem));
