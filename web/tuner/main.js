// The page of zvfilter tune.
import {addActions} from "./actions.js";
import {readAddress, writeAddress} from "./address.js";
import {Chain} from "./chain.js";
import {ChainPanel} from "./chain_panel.js";
import {byId, throttled} from "./dom.js";
import {showFigures} from "./figures.js";
import {addKeys} from "./keys.js";
import {Player} from "./player.js";
import {addSequenceBar} from "./sequence_bar.js";
import {Server} from "./server.js";
import {addSuggestion} from "./suggestion.js";
import {View} from "./view.js";

function complain(problem) {
  byId("problem").textContent = problem ? problem.message : "";
  byId("problem").hidden = !problem;
}

function start(server, setup, kept) {
  const {sequence} = setup;
  document.title = `${sequence.name} – tuner`;
  byId("input").textContent = sequence.name;
  const chain = new Chain(kept.chain ?? setup.chain);
  const panel = new ChainPanel(chain, setup);
  const view = new View(setup, kept);
  const player = new Player(sequence.labels.length, (index, accuracy) => server.frame(index, chain.steps, accuracy));
  const showPlace = addSequenceBar(player, chain, sequence.labels);
  const {save} = addActions(chain, server, setup.chainFile, complain);
  addSuggestion(chain, server, setup.filters, complain);
  addKeys({player, view, chain, save});

  let shown = null;
  let accuracy = null;
  let asked = JSON.stringify(chain.toFile());
  let changed = null; // since when a change waits to be seen
  let latency = null;

  const tell = () => {
    const rate = player.playing ? player.rate : null;
    showPlace(shown);
    showFigures(byId("figures"), shown, {truth: sequence.truth, accuracy, rate, latency});
    panel.showFigures(shown.steps);
  };
  // Laying the page out anew takes longer than a frame.
  const tellSoon = throttled(250, tell);
  const keepAddress = throttled(300, () =>
    writeAddress({token: kept.token, ...view.state, frame: player.index, chain: chain.toFile()})
  );

  player.addEventListener("frame", ({detail: frame}) => {
    shown = frame;
    accuracy = frame.accuracy ?? null;
    view.show(frame);
    complain(null);
    panel.showProblem(-1);
    if (changed !== null) {
      const since = changed;
      changed = null;
      requestAnimationFrame(() => (latency = performance.now() - since));
    }
    if (player.playing) tellSoon();
    else tell();
    keepAddress();
  });
  player.addEventListener("problem", ({detail: problem}) => {
    complain(problem);
    panel.showProblem(problem.step ?? -1, problem.key);
  });
  chain.addEventListener("change", () => {
    const text = JSON.stringify(chain.toFile());
    if (text !== asked) {
      asked = text;
      changed ??= performance.now();
      player.refresh();
    }
    keepAddress();
  });
  view.addEventListener("change", keepAddress);

  // For who looks at the page's exact pixels.
  globalThis.tuner = {pixels: (side) => view.renderer.readTexture(side), player, chain, latency: () => latency};
  player.seek(kept.frame ?? 0);
}

const kept = readAddress();
const server = new Server(kept.token);
try {
  start(server, await server.setup(), kept);
} catch (problem) {
  const advice = "Open the whole address that the program has printed, with what stands behind the #.";
  complain(problem.status === 403 ? new Error(`${problem.message}. ${advice}`) : problem);
}
