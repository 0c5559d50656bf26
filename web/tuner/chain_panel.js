// The steps of the chain and their controls.
import {Step} from "./chain.js";
import {makeControl} from "./controls.js";
import {button, byId, element, number, percent} from "./dom.js";

export class ChainPanel {
  #chain;
  #filters;
  #cards = [];
  #folded = new Set(); // names of steps

  constructor(chain, setup) {
    this.#chain = chain;
    this.#filters = new Map(setup.filters.filter(({available}) => available).map((filter) => [filter.name, filter]));
    byId("presets").append(this.#makePresets(setup.presets));
    byId("add").append(this.#makeAdd());
    chain.addEventListener("change", ({detail}) => (detail === "steps" ? this.#build() : this.#fill()));
    this.#build();
  }

  // What each step did to the frame shown.
  showFigures(figures) {
    this.#cards.forEach((card, i) => {
      const figure = figures[i];
      card.figures.textContent = !figure ? "off" : `${number(figure.milliseconds, 2)} ms`;
      card.figures.title = figure
        ? `valid ${percent(figure.before)} → ${percent(figure.after)}, changed ${percent(figure.changed)}`
        : "";
    });
  }

  // Marks the step and the value that a complaint is about; none for nothing.
  showProblem(step, key) {
    this.#cards.forEach((card, i) => {
      card.root.classList.toggle("wrong", i === step);
      for (const parameter of card.root.querySelectorAll(".parameter"))
        parameter.classList.toggle("wrong", i === step && parameter.dataset.key === key);
    });
  }

  #makePresets(presets) {
    const about = element("p", {className: "note"});
    const select = element(
      "select",
      {
        id: "preset",
        onchange: () => {
          const preset = presets.find(({name}) => name === select.value);
          about.textContent = preset.description;
          this.#chain.replace(preset.chain.map((step) => new Step(step)));
        }
      },
      element("option", {value: "", disabled: true, selected: true}, "choose one"),
      ...presets.map(({name, description}) => element("option", {value: name, title: description}, name))
    );
    return element(
      "div",
      {},
      element("div", {className: "line"}, element("label", {htmlFor: "preset"}, "Begin with a preset"), select),
      about
    );
  }

  #makeAdd() {
    const select = element(
      "select",
      {
        id: "filter",
        onchange: () => {
          about.textContent = this.#filters.get(select.value).use ?? "";
        }
      },
      ...[...this.#filters.values()].map(({name, summary}) => element("option", {value: name, title: summary}, name))
    );
    const about = element("p", {className: "note"}, this.#filters.get(select.value)?.use ?? "");
    const add = button("Add", "Add this filter at the end", () => {
      this.#chain.insert(this.#chain.steps.length, new Step({filter: select.value, values: {}}));
      this.#cards.at(-1).root.scrollIntoView({block: "nearest"});
    });
    return element(
      "div",
      {},
      element("div", {className: "line"}, element("label", {htmlFor: "filter"}, "Filter"), select, add),
      about
    );
  }

  #build() {
    this.#cards = this.#chain.steps.map((step, i) => this.#makeCard(step, i));
    byId("steps").replaceChildren(...this.#cards.map(({root}) => root));
    byId("empty").hidden = this.#cards.length > 0;
    this.#fill();
  }

  #fill() {
    this.#cards.forEach((card, i) => {
      const {values} = this.#chain.steps[i];
      for (const [key, control] of card.controls) control.show(values?.[key]);
      card.asMade.hidden = values !== null || card.controls.size === 0;
    });
  }

  #makeCard(step, i) {
    const filter = this.#filters.get(step.filter);
    const name = `step ${i + 1}, ${step.filter}`;
    const controls = new Map();
    const grid = element("div", {className: "parameters"});
    for (const parameter of filter?.parameters ?? []) {
      // The step may have moved since.
      const control = makeControl(parameter, (value, done) => this.#chain.set(i, parameter.name, value, done));
      controls.set(parameter.name, control);
      grid.append(control.root);
    }
    const asMade = element(
      "p",
      {className: "note"},
      `Left as it is made. ${filter?.asMade ?? ""} A value that you change gives it all values.`
    );
    const figures = element("span", {className: "figures"});
    const handle = button("⠿", `Move ${name}: drag, or arrow keys up and down`, null, {className: "handle"});
    const body = element(
      "div",
      {className: "body", hidden: this.#folded.has(step.name)},
      element("p", {className: "note"}, filter?.summary ?? ""),
      asMade,
      grid
    );
    const fold = button(
      step.filter,
      null,
      () => {
        body.hidden = !body.hidden;
        fold.setAttribute("aria-expanded", !body.hidden);
        this.#folded[body.hidden ? "add" : "delete"](step.name);
      },
      {className: "title", title: "Show or hide the values"}
    );
    fold.setAttribute("aria-expanded", !body.hidden);
    if (step.tag) fold.prepend(element("small", {}, step.tag));
    const enabled = element("input", {
      type: "checkbox",
      checked: step.enabled,
      title: "On or off",
      onchange: () => this.#chain.enable(i, enabled.checked)
    });
    enabled.setAttribute("aria-label", `${name} is on`);
    const root = element(
      "li",
      {className: step.enabled ? "step" : "step off"},
      handle,
      enabled,
      fold,
      figures,
      element(
        "span",
        {className: "tools"},
        button("2×", `Duplicate ${name}`, () => this.#chain.duplicate(i)),
        button("✕", `Remove ${name}`, () => this.#chain.remove(i))
      ),
      body
    );
    this.#makeMovable(handle, root, i);
    return {root, controls, asMade, figures};
  }

  #makeMovable(handle, root, i) {
    handle.onkeydown = (event) => {
      const to = i + ({ArrowUp: -1, ArrowDown: 1}[event.key] ?? 0);
      if (to === i) return;
      event.preventDefault();
      this.#chain.move(i, to);
      this.#cards[Math.min(Math.max(to, 0), this.#cards.length - 1)].root.querySelector(".handle").focus();
    };
    // The place that the card would take: that of the card whose middle the pointer has passed.
    const targetAt = (y) => {
      const middles = this.#cards
        .map((card) => card.root.getBoundingClientRect())
        .map(({top, height}) => top + Math.min(height, 48) / 2);
      return Math.max(0, middles.filter((middle) => middle < y).length - 1);
    };
    handle.onpointerdown = (event) => {
      handle.setPointerCapture(event.pointerId);
      root.classList.add("moving");
      const mark = (y) =>
        this.#cards.forEach((card, k) =>
          card.root.classList.toggle("target", y !== null && k === targetAt(y) && k !== i)
        );
      handle.onpointermove = ({clientY}) => mark(clientY);
      handle.onpointerup = ({clientY}) => {
        handle.onpointermove = handle.onpointerup = handle.onpointercancel = null;
        root.classList.remove("moving");
        mark(null);
        this.#chain.move(i, targetAt(clientY));
      };
      handle.onpointercancel = () => {
        handle.onpointermove = handle.onpointerup = handle.onpointercancel = null;
        root.classList.remove("moving");
        mark(null);
      };
    };
  }
}
