// Where the picture lies on the page: zoom, place, divider and the pixel that is probed. Before and after are one picture,
// so they move together.
import {clamp, element} from "./dom.js";

const mostZoom = 64;

export class Viewport extends EventTarget {
  #stage;
  #canvas;
  #divider;
  #mark = element("div", {className: "mark", hidden: true});
  #zoom = 1; // 1: the whole picture fits
  #center = null; // of what is seen, in pixels of the picture; null: that of the picture
  #pointers = new Map();
  #dragged = false;
  split = 0.5;
  probe = null; // {x, y} of the pixel
  splits = false; // whether there is a divider

  constructor(stage, canvas) {
    super();
    this.#stage = stage;
    this.#canvas = canvas;
    this.#divider = element("div", {
      className: "divider",
      role: "slider",
      tabIndex: 0,
      hidden: true,
      "aria-label": "Divider between before and after",
      "aria-valuemin": 0,
      "aria-valuemax": 100,
      "aria-orientation": "horizontal"
    });
    stage.append(canvas, this.#mark, this.#divider);
    new ResizeObserver(() => this.place()).observe(stage);
    stage.addEventListener(
      "wheel",
      (event) => {
        event.preventDefault();
        this.#zoomAt(Math.exp(-event.deltaY / 300), event.clientX, event.clientY);
      },
      {passive: false}
    );
    stage.addEventListener("pointerdown", (event) => this.#press(event));
    stage.addEventListener("pointermove", (event) => this.#move(event));
    for (const type of ["pointerup", "pointercancel"])
      stage.addEventListener(type, (event) => this.#pointers.delete(event.pointerId));
    stage.addEventListener("dblclick", () => this.fit());
    stage.addEventListener("keydown", (event) => this.#key(event));
    this.#divider.addEventListener("keydown", (event) => this.#dividerKey(event));
  }

  get zoom() {
    return this.#zoom;
  }

  #scale() {
    const {clientWidth, clientHeight} = this.#stage,
      {width, height} = this.#canvas;
    return Math.min(clientWidth / width, clientHeight / height) * this.#zoom;
  }

  // Lays out canvas, divider and mark.
  place() {
    const {clientWidth, clientHeight} = this.#stage,
      {width, height} = this.#canvas;
    if (!width || !clientWidth) return;
    const scale = this.#scale(),
      [halfWidth, halfHeight] = [clientWidth / 2 / scale, clientHeight / 2 / scale];
    const held = (value, half, size) => (half * 2 >= size ? size / 2 : clamp(value, half, size - half));
    const center = this.#center ?? {x: width / 2, y: height / 2};
    const x = held(center.x, halfWidth, width),
      y = held(center.y, halfHeight, height);
    if (this.#center) this.#center = {x, y};
    this.origin = {x: clientWidth / 2 - x * scale, y: clientHeight / 2 - y * scale, scale};
    this.#canvas.style.transform = `translate(${this.origin.x}px, ${this.origin.y}px) scale(${scale})`;
    this.#divider.hidden = !this.splits;
    if (this.splits) {
      this.#divider.style.left = `${clamp(this.origin.x + this.split * width * scale, 0, clientWidth)}px`;
      this.#divider.setAttribute("aria-valuenow", Math.round(100 * this.split));
    }
    this.#mark.hidden = !this.probe;
    if (this.probe) {
      const {x: column, y: row} = this.probe,
        side = Math.max(scale, 5),
        out = (side - scale) / 2;
      Object.assign(this.#mark.style, {
        width: `${side}px`,
        height: `${side}px`,
        left: `${this.origin.x + column * scale - out}px`,
        top: `${this.origin.y + row * scale - out}px`
      });
    }
  }

  fit() {
    this.#zoom = 1;
    this.#center = null;
    this.place();
  }

  #toPicture(clientX, clientY) {
    const box = this.#stage.getBoundingClientRect();
    return {
      x: (clientX - box.left - this.#stage.clientLeft - this.origin.x) / this.origin.scale,
      y: (clientY - box.top - this.#stage.clientTop - this.origin.y) / this.origin.scale
    };
  }

  #zoomAt(factor, clientX, clientY) {
    const before = this.#toPicture(clientX, clientY);
    this.#zoom = clamp(this.#zoom * factor, 1, mostZoom);
    this.#center ??= {x: this.#canvas.width / 2, y: this.#canvas.height / 2};
    this.place();
    const after = this.#toPicture(clientX, clientY);
    this.#center = {x: this.#center.x + before.x - after.x, y: this.#center.y + before.y - after.y};
    this.place();
  }

  #press(event) {
    if (event.button !== 0) return;
    this.#stage.setPointerCapture(event.pointerId);
    this.#dragged = event.target === this.#divider;
    this.#pointers.set(event.pointerId, {x: event.clientX, y: event.clientY});
    this.#probeAt(event);
  }

  #move(event) {
    const last = this.#pointers.get(event.pointerId);
    if (!last) {
      if (event.pointerType === "mouse" && !event.target.closest(".cloud")) this.#probeAt(event);
      return;
    }
    this.#pointers.set(event.pointerId, {x: event.clientX, y: event.clientY});
    if (this.#dragged) {
      this.#setSplit(this.#toPicture(event.clientX, event.clientY).x / this.#canvas.width);
    } else if (this.#pointers.size === 2) {
      const [a, b] = [...this.#pointers.values()],
        other = event.pointerId === [...this.#pointers.keys()][0] ? b : a;
      const span = (p) => Math.hypot(p.x - other.x, p.y - other.y) || 1;
      this.#zoomAt(span({x: event.clientX, y: event.clientY}) / span(last), (a.x + b.x) / 2, (a.y + b.y) / 2);
    } else if (this.#zoom > 1) {
      this.#center ??= {x: this.#canvas.width / 2, y: this.#canvas.height / 2};
      this.#center.x -= (event.clientX - last.x) / this.origin.scale;
      this.#center.y -= (event.clientY - last.y) / this.origin.scale;
      this.place();
    }
  }

  #setSplit(split) {
    this.split = clamp(split, 0, 1);
    this.place();
    this.dispatchEvent(new Event("split"));
  }

  #probeAt({clientX, clientY}) {
    const {x, y} = this.#toPicture(clientX, clientY);
    if (x < 0 || y < 0 || x >= this.#canvas.width || y >= this.#canvas.height) return;
    this.#setProbe(Math.floor(x), Math.floor(y));
  }

  #setProbe(x, y) {
    this.probe = {x: clamp(x, 0, this.#canvas.width - 1), y: clamp(y, 0, this.#canvas.height - 1)};
    this.place();
    this.dispatchEvent(new Event("probe"));
  }

  #key(event) {
    if (event.ctrlKey || event.metaKey || event.altKey || event.target !== this.#stage) return;
    const step = event.shiftKey ? 10 : 1;
    const [dx, dy] = {ArrowLeft: [-step, 0], ArrowRight: [step, 0], ArrowUp: [0, -step], ArrowDown: [0, step]}[
      event.key
    ] ?? [0, 0];
    const at = this.probe ?? {x: this.#canvas.width >> 1, y: this.#canvas.height >> 1};
    const factor = {"+": 1.5, "=": 1.5, "-": 1 / 1.5}[event.key];
    if (dx || dy) {
      this.#setProbe(at.x + dx, at.y + dy);
      if (this.#zoom > 1) this.#center = {...this.probe};
    } else if (factor) {
      this.#zoom = clamp(this.#zoom * factor, 1, mostZoom);
      this.#center = {x: at.x + 0.5, y: at.y + 0.5};
    } else if (event.key === "0") {
      this.fit();
    } else {
      return;
    }
    event.preventDefault();
    event.stopPropagation();
    this.place();
  }

  #dividerKey(event) {
    const steps = {
      ArrowLeft: -0.01,
      ArrowDown: -0.01,
      ArrowRight: 0.01,
      ArrowUp: 0.01,
      PageDown: -0.1,
      PageUp: 0.1,
      Home: -1,
      End: 1
    };
    if (!(event.key in steps)) return;
    event.preventDefault();
    event.stopPropagation();
    this.#setSplit(Math.round(100 * (this.split + steps[event.key])) / 100);
  }
}
