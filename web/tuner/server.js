// Calls of the program that serves the page.

export class Refusal extends Error {
  constructor(answer, status) {
    super(answer.error);
    this.step = answer.step;
    this.key = answer.key;
    this.status = status;
  }
}

async function call(path, token, body) {
  let answer;
  try {
    answer = await fetch(path, {
      method: "POST",
      headers: {"X-Tuner-Token": token, "Content-Type": "application/json"},
      body: JSON.stringify(body)
    });
  } catch {
    throw new Error(
      "The program does not answer: it has ended, or the connection is cut. Start it again and open its new address."
    );
  }
  if (!answer.ok) throw new Refusal(await answer.json(), answer.status);
  return answer;
}

// An answer of /api/frame: the length of a JSON text, the text, and the parts that it lists.
function decode(bytes) {
  const length = new DataView(bytes).getUint32(0, true);
  const header = JSON.parse(new TextDecoder().decode(new Uint8Array(bytes, 4, length)));
  let at = 4 + length;
  const parts = new Map();
  for (const {name, bytes: size} of header.parts) {
    const pixels = name === "before" || name === "after";
    parts.set(name, pixels ? new Uint16Array(bytes, at, size / 2) : new Float32Array(bytes, at, size / 4));
    at += (size + 3) & ~3;
  }
  return {header, parts};
}

const mostInputBytes = 256e6;

export class Server {
  #token;
  #client = crypto.randomUUID();
  #number = 0;
  #tables = new Map(); // millimetres by pixel value
  #inputs = new Map(); // frames before the chain, by number

  constructor(token) {
    this.#token = token;
  }

  async setup() {
    return (await call("/api/setup", this.#token, {})).json();
  }
  async texts(chain) {
    return (await call("/api/texts", this.#token, {chain})).json();
  }
  // Values that suit the sequence, for the whole chain or one step: {chain, helps, left, sentences}.
  async suggest(chain, step, seconds) {
    return (await call("/api/suggest", this.#token, {chain, step, seconds})).json();
  }
  async save(chain) {
    return (await call("/api/save", this.#token, {chain})).json();
  }

  // A frame before and after the chain: {width, height, pixels, millimetres, ...} each, with what is known of it.
  async frame(index, steps, accuracy) {
    const answer = await call("/api/frame", this.#token, {
      client: this.#client,
      number: ++this.#number,
      frame: index,
      chain: steps.map((step) => step.toFile()),
      names: steps.map((step) => step.name),
      input: !this.#inputs.has(index),
      accuracy,
      tables: [...this.#tables.keys()]
    });
    const {header, parts} = decode(await answer.arrayBuffer());
    for (const [name, values] of parts) if (name.startsWith("table ")) this.#tables.set(name.slice(6), values);
    if (parts.has("before")) this.#keep(index, parts.get("before"));
    const side = (about, pixels) => ({...about, pixels, millimetres: this.#tables.get(about.table)});
    return {
      ...header,
      before: side(header.before, this.#inputs.get(index)),
      after: side(header.after, parts.get("after"))
    };
  }

  #keep(index, pixels) {
    this.#inputs.set(index, pixels.slice());
    while (this.#inputs.size > 1 && this.#inputs.size * pixels.byteLength > mostInputBytes)
      this.#inputs.delete(this.#inputs.keys().next().value);
  }
}
