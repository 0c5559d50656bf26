// Which frame is asked for, and when. One request is on its way at a time; what was wished meanwhile gives way to what
// was wished last.

const frameMilliseconds = 1000 / 30;

export class Player extends EventTarget {
  #ask; // (index, accuracy) => a promise of the frame
  #busy = false;
  #wish = null; // the frame to ask for next
  #due = 0;
  #shown = []; // times of the last frames that were shown
  #idle = null;
  index = 0;
  playing = false;
  rested = false; // whether all has been asked for and shown, the errors too

  constructor(count, ask) {
    super();
    this.count = count;
    this.#ask = ask;
  }

  // The frame with whatever has changed since.
  refresh() {
    if (!this.playing) this.#go(this.index);
  }
  seek(index) {
    this.pause();
    this.#go(Math.min(Math.max(index, 0), this.count - 1));
  }
  step(by) {
    this.seek((this.index + by + this.count) % this.count);
  }
  toggle() {
    if (this.playing) this.pause();
    else this.play();
  }
  play() {
    if (this.playing || this.count < 2) return;
    this.playing = true;
    this.#due = performance.now();
    this.#shown = [];
    this.#tell("state");
    this.#go((this.index + 1) % this.count);
  }
  pause() {
    if (!this.playing) return;
    this.playing = false;
    this.#wish = null;
    this.#tell("state");
    this.#rest();
  }

  // Shown within the last second of playing.
  get rate() {
    const [first, last] = [this.#shown[0], this.#shown.at(-1)];
    return this.#shown.length > 1 && last > first ? (1000 * (this.#shown.length - 1)) / (last - first) : null;
  }

  #tell(type, detail) {
    this.dispatchEvent(new CustomEvent(type, {detail}));
  }

  #go(index) {
    this.#wish = index;
    this.rested = false;
    if (!this.#busy) this.#work();
  }

  async #work() {
    this.#busy = true;
    clearTimeout(this.#idle);
    while (this.#wish !== null) {
      const index = this.#wish;
      this.#wish = null;
      try {
        let frame = await this.#ask(index, false);
        while (this.playing) frame = await this.#showAndAsk(frame);
        this.#show(frame);
      } catch (problem) {
        if (problem.status === 409) continue;
        this.pause();
        this.#tell("problem", problem);
      }
    }
    this.#busy = false;
    this.#rest();
  }

  #show(frame) {
    this.index = frame.frame;
    this.#tell("frame", frame);
  }

  // The next frame is made while this one waits for its time and is drawn.
  async #showAndAsk(frame) {
    const next = this.#ask((frame.frame + 1) % this.count, false);
    next.catch(() => {});
    const wait = this.#due - performance.now();
    if (wait > 0) await new Promise((resolve) => setTimeout(resolve, wait));
    const now = performance.now();
    this.#due = Math.max(this.#due, now - frameMilliseconds) + frameMilliseconds;
    this.#shown = [...this.#shown.filter((time) => time > now - 1000), now];
    this.#show(frame);
    return next;
  }

  // What takes long is asked for when nothing else is wished.
  #rest() {
    clearTimeout(this.#idle);
    this.#idle = setTimeout(async () => {
      if (this.playing || this.#busy) return;
      this.#busy = true;
      try {
        this.#show(await this.#ask(this.index, true));
      } catch (problem) {
        this.#tell("problem", problem);
      }
      this.#busy = false;
      this.rested = this.#wish === null;
      if (!this.rested) this.#work();
    }, 200);
  }
}
