// The view: what is shown of a frame, in which colours, and what is said of it beside the picture.
import {button, byId, element, radios, throttled} from "./dom.js";
import {automaticLimit, automaticRange, showHistogram, showLegend} from "./legend.js";
import {showProbe} from "./probe.js";
import {colorTable, Renderer} from "./renderer.js";
import {Viewport} from "./viewport.js";

const choices = [
  ["before", "Before", "The frame as it came (key 1)"],
  ["after", "After", "What the chain makes of it (2)"],
  ["split", "Split", "Before on the left of a divider, after on the right (3)"],
  ["difference", "Difference", "After − before (4)"],
  ["cloud", "Points", "The result as points in space (5)"]
];

export class View extends EventTarget {
  #frame = null;
  #cloud = null;
  #noPoints; // why not
  #fields;
  #stage = byId("stage");
  #cloudRoot = element("div", {className: "cloud", hidden: true});
  #later = throttled(250, () => this.#showBeside());

  constructor(setup, kept) {
    super();
    const canvas = element("canvas", {width: setup.sequence.width, height: setup.sequence.height});
    canvas.setAttribute("aria-label", "The frame in colours");
    canvas.setAttribute("role", "img");
    this.renderer = new Renderer(canvas, setup.colors);
    this.viewport = new Viewport(this.#stage, canvas);
    this.#stage.append(this.#cloudRoot);
    // What is done to the points is not meant for the picture below them.
    for (const type of ["pointerdown", "wheel", "dblclick"])
      this.#cloudRoot.addEventListener(type, (event) => event.stopPropagation());
    this.#stage.style.aspectRatio = `${setup.sequence.width} / ${setup.sequence.height}`;
    this.#noPoints = !setup.points
      ? "This build has no view of points: the packages of web/package.json were not there"
      : !setup.sequence.intrinsics
        ? "Points in space need the camera's intrinsics, which nobody gave"
        : "";
    this.kind =
      choices.some(([name]) => name === kept.view) && !(kept.view === "cloud" && this.#noPoints) ? kept.view : "split";
    this.renderer.map = setup.colors.maps.find(({name}) => name === kept.colors) ?? setup.colors.maps[0];
    const {near, far} = setup.sequence;
    this.renderer.range =
      kept.near !== null && kept.far > kept.near
        ? {near: kept.near, far: kept.far}
        : {near: Math.floor(near), far: Math.ceil(far)};
    this.renderer.limit = Math.max(1, Math.round((far - near) / 40));
    this.#makeBar(setup);
    this.viewport.addEventListener("split", () => {
      this.renderer.divider = this.viewport.split;
      this.renderer.draw();
    });
    this.viewport.addEventListener("probe", () => this.#showProbe());
    this.choose(this.kind);
  }

  get state() {
    const {near, far} = this.renderer.range;
    return {view: this.kind, colors: this.renderer.map.name, near, far};
  }

  show(frame) {
    const {width, height} = this.renderer.canvas;
    this.#frame = frame;
    this.renderer.show(frame);
    if (this.renderer.canvas.width !== width || this.renderer.canvas.height !== height) this.viewport.place();
    if (this.kind === "cloud") this.#showCloud();
    this.#later();
  }

  choose(kind) {
    this.kind = kind;
    this.renderer.mode = kind === "cloud" ? "after" : kind;
    this.viewport.splits = kind === "split";
    this.#cloudRoot.hidden = kind !== "cloud";
    this.#redraw();
    if (kind === "cloud") this.#showCloud();
  }

  // A range or limit that suits the frame shown.
  fitColors() {
    if (!this.#frame) return;
    if (this.renderer.mode === "difference") this.renderer.limit = automaticLimit(this.#frame) ?? this.renderer.limit;
    else this.renderer.range = automaticRange(this.renderer.side) ?? this.renderer.range;
    this.#redraw();
  }

  #makeBar(setup) {
    this.kinds = radios("view", "What is shown", choices, this.kind, (kind) => this.choose(kind));
    const points = this.kinds.querySelector("[value=cloud]");
    points.disabled = this.#noPoints !== "";
    if (points.disabled) points.closest("label").title = this.#noPoints;
    const map = element(
      "select",
      {
        id: "map",
        onchange: () => {
          this.renderer.map = setup.colors.maps.find(({name}) => name === map.value);
          this.#redraw();
        }
      },
      ...setup.colors.maps.map(({name}) =>
        element("option", {value: name, selected: name === this.renderer.map.name}, name)
      )
    );
    const field = (label) =>
      element("input", {type: "number", min: 0, step: "any", "aria-label": label, onchange: () => this.#takeRange()});
    this.#fields = {
      near: field("Colours from, mm"),
      far: field("Colours to, mm"),
      limit: field("Largest change in colours, mm")
    };
    const {near, far, limit} = this.#fields;
    byId("view-bar").append(
      this.kinds,
      element("label", {htmlFor: "map"}, "Colours"),
      map,
      element("span", {className: "range depth"}, near, " to ", far, " mm"),
      element("span", {className: "range change"}, "± ", limit, " mm"),
      button("Fit", "Fit the colours to this frame (A)", () => this.fitColors()),
      button("Whole", "Show the whole picture (0)", () => this.viewport.fit())
    );
  }

  #takeRange() {
    const {near, far, limit} = this.#fields;
    if (+far.value > +near.value) this.renderer.range = {near: +near.value, far: +far.value};
    if (+limit.value > 0) this.renderer.limit = +limit.value;
    this.#redraw();
  }

  #redraw() {
    const {range, limit, mode} = this.renderer;
    this.#fields.near.value = Math.round(range.near);
    this.#fields.far.value = Math.round(range.far);
    this.#fields.limit.value = +limit.toPrecision(3);
    byId("view-bar").classList.toggle("difference", mode === "difference");
    this.renderer.draw();
    this.viewport.place();
    showLegend(byId("legend"), this.renderer);
    this.#showBeside();
    this.dispatchEvent(new Event("change"));
  }

  #showBeside() {
    this.#showProbe();
    if (this.#frame) showHistogram(byId("histogram"), this.#frame, this.renderer.range);
  }

  #showProbe() {
    if (this.#frame) showProbe(byId("probe"), this.#frame, this.renderer.side, this.viewport.probe);
  }

  async #showCloud() {
    // A bundle of its own, which is large.
    this.#cloud ??= import(new URL("points.js", document.baseURI).href).then(({Cloud}) => new Cloud(this.#cloudRoot));
    const cloud = await this.#cloud,
      {after} = this.#frame ?? {};
    if (!after?.intrinsics || this.kind !== "cloud") return;
    const {map, range} = this.renderer;
    cloud.show(after, colorTable(map, after.millimetres, range.near, range.far), range);
    this.#cloudRoot.dataset.points = cloud.count;
  }
}
