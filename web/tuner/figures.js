// What is measured of the frame shown.
import {element, number, percent} from "./dom.js";

const row = (name, before, after, title = "") =>
  element("tr", {title}, element("th", {scope: "row"}, name), element("td", {}, before), element("td", {}, after));

// `accuracy` is that of the same frame and chain, as far as it is known yet.
export function showFigures(root, frame, {truth, accuracy, rate, latency}) {
  const {whole} = frame,
    errors = (name, key, text, title) =>
      row(name, accuracy ? text(accuracy[0][key]) : "…", accuracy ? text(accuracy[1][key]) : "…", title);
  const millimetres = (value) => (value === null ? "–" : `${number(value)} mm`);
  const head = element(
    "thead",
    {},
    element("tr", {}, element("td"), element("th", {scope: "col"}, "before"), element("th", {scope: "col"}, "after"))
  );
  const rows = [row("coverage", percent(whole.before), percent(whole.after), "pixels with a depth")];
  if (truth) {
    rows.push(
      errors("median error", "median", millimetres, "against the true depth; not known of disparity frames"),
      errors("95th percentile", "p95", millimetres, "of the errors"),
      errors("off by over 5 %", "off", percent, "of the true depth")
    );
  }
  const fact = (name, value) => [element("dt", {}, name), element("dd", {}, value)];
  root.replaceChildren(
    element("table", {className: "measures"}, head, element("tbody", {}, ...rows)),
    element(
      "dl",
      {className: "facts"},
      ...fact("changed", percent(whole.changed)),
      ...fact("filters", `${number(whole.milliseconds, 2)} ms a frame`),
      ...fact(
        "size",
        frame.before.width === frame.after.width && frame.before.height === frame.after.height
          ? `${frame.after.width} × ${frame.after.height}`
          : `${frame.before.width} × ${frame.before.height} → ${frame.after.width} × ${frame.after.height}`
      ),
      ...fact("playing", rate === null ? "–" : `${number(rate)} frames/s`),
      ...fact("last change shown after", latency === null ? "–" : `${Math.round(latency)} ms`)
    )
  );
}
