// The keys of the page, and the list of them.
import {byId, element} from "./dom.js";

export function addKeys({player, view, chain, save}) {
  const keys = [
    {key: " ", name: "space", text: "play or pause", act: () => player.toggle()},
    {key: ",", text: "one frame back", act: () => player.step(-1)},
    {key: ".", text: "one frame on", act: () => player.step(1)},
    ...["before", "after", "split", "difference", "cloud"].map((kind, i) => ({
      key: String(i + 1),
      text: kind === "cloud" ? "points" : kind,
      act: () => view.kinds.choose(kind)
    })),
    {key: "a", name: "A", text: "fit the colours to this frame", act: () => view.fitColors()},
    {key: "0", text: "show the whole picture", act: () => view.viewport.fit()}
  ];
  const others = [
    ["Ctrl+Z, Ctrl+Shift+Z", "undo, redo"],
    ["Ctrl+S", "save, if there is a file"],
    ["+ and −, wheel", "zoom"],
    ["arrow keys on the picture", "move the probe"]
  ];
  const list = [...keys.map(({key, name, text}) => [name ?? key, text]), ...others];
  byId("keys").append(...list.flatMap(([name, text]) => [element("dt", {}, name), element("dd", {}, text)]));

  const withControl = {z: () => chain.undo(), Z: () => chain.redo(), y: () => chain.redo(), s: () => save?.()};
  addEventListener("keydown", (event) => {
    const control = event.ctrlKey || event.metaKey;
    const action = control ? withControl[event.key] : keys.find(({key}) => key === event.key.toLowerCase())?.act;
    if (!action || event.altKey) return;
    // What an element does with a key of its own is left to it.
    const typing = event.target.matches("input:not([type=range], [type=checkbox], [type=radio]), select, textarea");
    const pressing = event.target.matches("button, summary, input[type=checkbox], input[type=radio]");
    if ((typing && !(control && event.key === "s")) || (event.key === " " && pressing)) return;
    event.preventDefault();
    action();
  });
}
