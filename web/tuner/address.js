// What the page's address keeps, so that it can be opened again: all of it behind the #, which no server sees.

export function readAddress() {
  const kept = new URLSearchParams(location.hash.slice(1));
  const number = (name) => (kept.has(name) && Number.isFinite(+kept.get(name)) ? +kept.get(name) : null);
  let chain = null;
  try {
    const steps = JSON.parse(kept.get("chain"));
    if (Array.isArray(steps) && steps.every((step) => typeof step?.filter === "string")) chain = steps;
  } catch {
    // An address that somebody has cut short: the chain that the program was started with is there.
  }
  return {
    token: kept.get("token") ?? "",
    chain,
    frame: number("frame"),
    view: kept.get("view"),
    colors: kept.get("colors"),
    near: number("near"),
    far: number("far")
  };
}

export function writeAddress(state) {
  const kept = new URLSearchParams();
  for (const [name, value] of Object.entries(state)) kept.set(name, name === "chain" ? JSON.stringify(value) : value);
  history.replaceState(null, "", `#${kept}`);
}
