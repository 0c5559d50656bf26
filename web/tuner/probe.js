// The values at one pixel and around it.
import {clamp, element, number} from "./dom.js";

const reach = 2;

function valueAt(side, x, y) {
  const raw = side.pixels[y * side.width + x],
    millimetres = side.millimetres[raw];
  return {raw, millimetres, text: millimetres === 0 ? `${raw} (no depth)` : `${raw} (${number(millimetres)} mm)`};
}

function neighbours(side, name, x, y) {
  const rows = [];
  for (let row = y - reach; row <= y + reach; ++row) {
    const cells = [];
    for (let column = x - reach; column <= x + reach; ++column) {
      const inside = column >= 0 && row >= 0 && column < side.width && row < side.height;
      cells.push(
        element(
          "td",
          {className: column === x && row === y ? "center" : ""},
          inside ? String(side.pixels[row * side.width + column]) : ""
        )
      );
    }
    rows.push(element("tr", {}, ...cells));
  }
  return element("table", {className: "neighbours"}, element("caption", {}, name), element("tbody", {}, ...rows));
}

// `place` is a pixel of `shown`, the side whose size the picture has.
export function showProbe(root, frame, shown, place) {
  if (!place) {
    root.replaceChildren(
      element("p", {className: "note"}, "Point at the picture, or choose it and use the arrow keys.")
    );
    return;
  }
  const on = (side) => [
    clamp(Math.floor((place.x * side.width) / shown.width), 0, side.width - 1),
    clamp(Math.floor((place.y * side.height) / shown.height), 0, side.height - 1)
  ];
  const before = valueAt(frame.before, ...on(frame.before)),
    after = valueAt(frame.after, ...on(frame.after));
  const change = before.millimetres && after.millimetres ? after.millimetres - before.millimetres : null;
  const line = (name, value) => [element("dt", {}, name), element("dd", {}, value)];
  root.replaceChildren(
    element(
      "dl",
      {className: "facts"},
      ...line("pixel", `x ${place.x}, y ${place.y}`),
      ...line("before", before.text),
      ...line("after", after.text),
      ...line("difference", change === null ? "–" : `${change > 0 ? "+" : ""}${number(change)} mm`)
    ),
    element(
      "div",
      {className: "tables"},
      neighbours(frame.before, "raw, before", ...on(frame.before)),
      neighbours(frame.after, "raw, after", ...on(frame.after))
    )
  );
}
