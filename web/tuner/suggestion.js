// Values that the program finds for the sequence, beside the present ones.
import {Step} from "./chain.js";
import {button, byId, element, number} from "./dom.js";

const times = [5, 15, 60]; // seconds

// What a suggestion changes, in words: [name, now, suggested] each.
export function differences(present, suggested, filters) {
  const rows = [];
  suggested.forEach((step, i) => {
    const now = present[i];
    const known = filters.find(({name}) => name === step.filter)?.parameters ?? [];
    const title = step.tag ?? step.filter;
    if (now?.filter !== step.filter) return rows.push([title, now?.filter ?? "–", step.filter]);
    for (const [key, value] of Object.entries(step.values ?? {})) {
      const before = now.values?.[key] ?? known.find(({name}) => name === key)?.default;
      if (Number(before) !== Number(value)) rows.push([`${title}.${key}`, String(before), String(value)]);
    }
  });
  for (const step of present.slice(suggested.length)) rows.push([step.tag ?? step.filter, step.filter, "–"]);
  return rows;
}

// Adds the search for values to the page; `complain` takes what failed.
export function addSuggestion(chain, server, filters, complain) {
  const what = element("select", {id: "suggest-what"});
  const time = element(
    "select",
    {id: "suggest-time"},
    ...times.map((seconds) => element("option", {value: seconds}, `${seconds} s`))
  );
  const found = element("div", {id: "suggested", role: "status"});
  const ask = button("Suggest", "Look for values that suit this sequence", async () => {
    const step = what.value === "" ? null : +what.value;
    const asked = chain.toFile();
    ask.disabled = true;
    found.replaceChildren(element("p", {className: "note"}, `Looking for values, about ${time.value} s …`));
    try {
      show(asked, await server.suggest(asked, step, +time.value));
    } catch (problem) {
      found.replaceChildren();
      complain(problem);
    } finally {
      ask.disabled = false;
    }
  });
  const close = () => found.replaceChildren();

  function show(asked, {chain: steps, helps, left, sentences}) {
    const rows = differences(asked, steps, filters);
    const cells = (kind, texts) => element("tr", {}, ...texts.map((text) => element(kind, {}, text)));
    const take = button("Take", "Use the suggested values (Undo brings the present ones back)", () => {
      chain.replace(steps.map((step) => new Step(step)));
      close();
    });
    const said = !helps
      ? "No filter helps on this sequence."
      : rows.length === 0
        ? "The present values are as good as any that were found."
        : `The errors fall to ${number(100 * left, 1)} % of those of the untouched frames.`;
    found.replaceChildren(
      element("p", {}, said),
      ...(rows.length ? [element("table", {}, cells("th", ["value", "now", "suggested"]), ...rows.map((row) => cells("td", row)))] : []),
      ...(sentences.length
        ? [element("details", {}, element("summary", {}, "Why"), ...sentences.map((text) => element("p", {className: "note"}, text)))]
        : []),
      element("div", {className: "line"}, ...(rows.length ? [take] : []), button("Dismiss", "Keep the present values", close))
    );
  }

  function list() {
    const kept = what.value;
    what.replaceChildren(
      element("option", {value: ""}, chain.steps.length ? "the whole chain" : "a chain"),
      ...chain.steps.map((step, i) => element("option", {value: i}, `step ${i + 1}, ${step.tag ?? step.filter}`))
    );
    if (chain.steps[kept]) what.value = kept;
  }
  chain.addEventListener("change", ({detail}) => detail === "steps" && list());
  list();
  byId("suggest").append(
    element(
      "div",
      {className: "line"},
      ask,
      element("label", {htmlFor: "suggest-what"}, "values for"),
      what,
      element("label", {htmlFor: "suggest-time"}, "in"),
      time
    ),
    found
  );
}
