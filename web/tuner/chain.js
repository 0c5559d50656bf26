// The chain that is being tuned, and what it was before.

let made = 0;

export class Step {
  // `step` as a chain file has it.
  constructor(step, name = `s${++made}`) {
    this.name = name; // by which the program knows the step again
    this.filter = step.filter;
    this.tag = step.tag;
    this.enabled = step.enabled ?? true;
    this.values = step.values ? {...step.values} : null; // null: the filter is left as it is made
  }

  toFile() {
    return {
      filter: this.filter,
      ...(this.tag && {tag: this.tag}),
      ...(!this.enabled && {enabled: false}),
      ...(this.values && {values: this.values})
    };
  }
}

const copy = (steps) => steps.map((step) => new Step(step.toFile(), step.name));

export class Chain extends EventTarget {
  #done = []; // earlier chains
  #undone = []; // later ones
  #kept; // the chain at its last commit
  steps;

  constructor(steps) {
    super();
    this.steps = steps.map((step) => new Step(step));
    this.#kept = copy(this.steps);
  }

  get canUndo() {
    return this.#done.length > 0;
  }
  get canRedo() {
    return this.#undone.length > 0;
  }
  toFile() {
    return this.steps.map((step) => step.toFile());
  }

  // Other steps, or the same in another order.
  replace(steps) {
    this.steps = steps;
    this.commit("steps");
  }

  insert(at, step) {
    this.replace([...this.steps.slice(0, at), step, ...this.steps.slice(at)]);
  }
  remove(at) {
    this.replace(this.steps.filter((_, i) => i !== at));
  }
  move(from, to) {
    if (to < 0 || to >= this.steps.length || to === from) return;
    const steps = [...this.steps];
    steps.splice(to, 0, ...steps.splice(from, 1));
    this.replace(steps);
  }
  duplicate(at) {
    const twin = new Step({...this.steps[at].toFile(), tag: undefined});
    this.insert(at + 1, twin);
  }
  enable(at, enabled) {
    this.steps[at].enabled = enabled;
    this.commit("steps");
  }

  // `value` null: the default. `done` when the hand has left the control, so that a drag is one change.
  set(at, key, value, done) {
    const step = this.steps[at];
    step.values ??= {};
    if (value === null) delete step.values[key];
    else step.values[key] = value;
    if (done) this.commit("values");
    else this.#tell("values");
  }

  commit(what) {
    if (JSON.stringify(this.#kept) !== JSON.stringify(this.steps)) {
      this.#done.push(this.#kept);
      this.#undone = [];
      this.#kept = copy(this.steps);
    }
    this.#tell(what);
  }

  undo() {
    this.#travel(this.#done, this.#undone);
  }
  redo() {
    this.#travel(this.#undone, this.#done);
  }

  #travel(from, to) {
    if (from.length === 0) return;
    to.push(this.#kept);
    this.#kept = from.pop();
    this.steps = copy(this.#kept);
    this.#tell("steps");
  }

  #tell(what) {
    this.dispatchEvent(new CustomEvent("change", {detail: what}));
  }
}
