// Small helpers for the page's elements.

export const byId = (id) => document.getElementById(id);

export function element(tag, properties = {}, ...children) {
  const made = document.createElement(tag);
  for (const [name, value] of Object.entries(properties)) {
    if (name in made) made[name] = value;
    else made.setAttribute(name, value);
  }
  made.append(...children);
  return made;
}

export function button(text, label, action, properties = {}) {
  const made = element("button", {type: "button", onclick: action, ...properties}, text);
  if (label) {
    made.setAttribute("aria-label", label);
    made.title = label;
  }
  return made;
}

// A group of radio buttons of which one is chosen. `choices` are [value, text, title].
export function radios(name, legend, choices, chosen, choose) {
  const group = element("fieldset", {className: "radios"}, element("legend", {className: "unseen"}, legend));
  for (const [value, text, title = ""] of choices) {
    const input = element("input", {
      type: "radio",
      name,
      value,
      checked: value === chosen,
      onchange: () => choose(value)
    });
    group.append(element("label", {title}, input, element("span", {}, text)));
  }
  group.choose = (value) => {
    const input = group.querySelector(`input[value="${value}"]`);
    if (!input || input.disabled) return;
    input.checked = true;
    choose(value);
  };
  return group;
}

export const clamp = (value, low, high) => Math.min(Math.max(value, low), high);

export const percent = (share) => (share === null || share === undefined ? "–" : `${(100 * share).toFixed(1)} %`);

// Whole below `digits` decimals only where they say something.
export const number = (value, digits = 1) =>
  value === null || value === undefined ? "–" : String(+value.toFixed(digits)).replace("-", "−");

export function throttled(pause, work) {
  let timer = null;
  return () => {
    timer ??= setTimeout(() => {
      timer = null;
      work();
    }, pause);
  };
}
