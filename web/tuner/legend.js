// What the colours mean, and their range.
import {element, number} from "./dom.js";

const ends = (low, high, count = 5) => Array.from({length: count}, (_, i) => low + ((high - low) * i) / (count - 1));

function swatch(color, text) {
  const mark = element("i");
  mark.style.background = `#${color}`;
  return element("span", {className: "swatch"}, mark, text);
}

export function showLegend(root, renderer) {
  const {map, range, limit, mode, colors} = renderer;
  const difference = mode === "difference";
  const [low, high] = difference ? [-limit, limit] : [range.near, range.far];
  const text = difference ? colors.difference.colors : map.colors;
  const stops = Array.from({length: 33}, (_, i) => `#${text.substr(6 * Math.round((i * 255) / 32), 6)}`);
  const bar = element("div", {className: "colors"});
  bar.style.background = `linear-gradient(to right, ${stops.join(", ")})`;
  const ticks = element(
    "div",
    {className: "ticks"},
    ...ends(low, high).map((value) =>
      element("span", {}, `${difference && value > 0 ? "+" : ""}${number(value, high - low < 20 ? 1 : 0)}`)
    )
  );
  const marks = difference
    ? [
        swatch(colors.difference.filled, "filled"),
        swatch(colors.difference.removed, "removed"),
        swatch(colors.difference.hole, "hole in both")
      ]
    : [swatch(map.hole, "no depth")];
  root.replaceChildren(
    element("div", {className: "scale"}, bar, ticks),
    element("p", {className: "meaning"}, difference ? "mm, after − before" : "mm from the camera", ...marks)
  );
}

// How often each distance is there, before and after, over the range of the colours.
export function showHistogram(root, frame, range, map) {
  const bins = 96,
    count = (side) => {
      const by = new Uint32Array(65536),
        heights = new Float64Array(bins);
      for (const raw of side.pixels) ++by[raw];
      let outside = 0;
      by.forEach((times, raw) => {
        if (times === 0 || side.millimetres[raw] === 0) return;
        const bin = Math.floor(((side.millimetres[raw] - range.near) / (range.far - range.near)) * bins);
        if (bin < 0 || bin >= bins) outside += times;
        else heights[bin] += times;
      });
      return {heights: heights.map((height) => height / side.pixels.length), outside: outside / side.pixels.length};
    };
  const [before, after] = [count(frame.before), count(frame.after)];
  const most = Math.max(...before.heights, ...after.heights, 1e-9);
  const svg = (tag, properties) => {
    const made = document.createElementNS("http://www.w3.org/2000/svg", tag);
    for (const [name, value] of Object.entries(properties)) made.setAttribute(name, value);
    return made;
  };
  const outline = ({heights}) =>
    [...heights].map((height, bin) => `V${(60 - (58 * height) / most).toFixed(1)}H${bin + 1}`).join("");
  const plot = svg("svg", {
    viewBox: `0 0 ${bins} 60`,
    preserveAspectRatio: "none",
    class: "histogram",
    role: "img",
    "aria-label": `Distances from ${number(range.near, 0)} to ${number(range.far, 0)} mm, before and after the chain`
  });
  plot.append(
    svg("path", {class: "before", d: `M0 60${outline(before)}V60Z`}),
    svg("path", {class: "after", d: `M0 60${outline(after)}V60`})
  );
  const share = (value) => `${(100 * value).toFixed(1)} %`;
  root.replaceChildren(
    plot,
    element(
      "div",
      {className: "ticks"},
      element("span", {}, number(range.near, 0)),
      element("span", {}, `${number(range.far, 0)} mm`)
    ),
    element(
      "p",
      {className: "note"},
      element("span", {className: "key before"}, "before"),
      element("span", {className: "key after"}, "after"),
      ` outside the range: ${share(before.outside)} before, ${share(after.outside)} after`
    )
  );
}

// The range between the nearest and the farthest fiftieth of what is seen.
export function automaticRange(side) {
  const by = new Map();
  for (const raw of side.pixels) if (side.millimetres[raw] > 0) by.set(raw, (by.get(raw) ?? 0) + 1);
  const sorted = [...by].map(([raw, times]) => [side.millimetres[raw], times]).sort(([a], [b]) => a - b);
  const total = sorted.reduce((sum, [, times]) => sum + times, 0);
  const at = (part) => {
    let sum = 0;
    return sorted.find(([, times]) => (sum += times) >= part * total)?.[0];
  };
  return total === 0 ? null : {near: at(0.02), far: at(0.98)};
}

// What 98 of 100 changes don't exceed.
export function automaticLimit({before, after}) {
  if (before.width !== after.width || before.height !== after.height) return null;
  const changes = [];
  before.pixels.forEach((raw, i) => {
    const from = before.millimetres[raw],
      to = after.millimetres[after.pixels[i]];
    if (from > 0 && to > 0 && from !== to) changes.push(Math.abs(to - from));
  });
  return changes.length === 0 ? null : Float64Array.from(changes).sort()[Math.floor(0.98 * (changes.length - 1))];
}
