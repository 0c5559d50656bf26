// The control of one parameter, made of what the program says of it.
import {button, clamp, element, number} from "./dom.js";

let made = 0;

// `told` takes a value, or null for the default, and whether the hand has left the control.
export function makeControl(parameter, told) {
  const id = `c${++made}`;
  const control =
    parameter.type === "bool"
      ? makeCheckBox(parameter, id, told)
      : parameter.choices
        ? makeChoice(parameter, id, told)
        : makeSlider(parameter, id, told);
  const reset = button("↺", `Reset ${parameter.name} to ${defaultText(parameter)}`, () => told(null, true), {
    className: "reset"
  });
  const about = [
    parameter.meaning ?? parameter.description.trim(),
    parameter.direction && `${parameter.direction[0].toUpperCase()}${parameter.direction.slice(1)}.`
  ]
    .filter(Boolean)
    .join(" ");
  const root = element(
    "div",
    {className: "parameter"},
    element("label", {htmlFor: id}, parameter.name, " ", element("small", {}, parameter.unit ?? "")),
    reset,
    control.root,
    element("p", {className: "limits"}, control.limits ?? ""),
    element("p", {className: "about", id: `${id}-about`, title: about}, about)
  );
  root.querySelector(`#${id}`).setAttribute("aria-describedby", `${id}-about`);
  root.dataset.key = parameter.name;
  return {
    root,
    show: (value) => {
      control.show(value);
      root.classList.toggle("changed", value !== undefined);
      reset.disabled = value === undefined;
    }
  };
}

const defaultText = (parameter) =>
  parameter.derived
    ? "automatic"
    : (parameter.choices?.find(({value}) => value === +parameter.default)?.name ?? String(parameter.default));

function makeCheckBox(parameter, id, told) {
  const box = element("input", {type: "checkbox", id, onchange: () => told(box.checked ? 1 : 0, true)});
  return {
    root: element("div", {className: "entry"}, box),
    show: (value) => {
      box.checked = Boolean(value ?? +parameter.default);
    }
  };
}

function makeChoice(parameter, id, told) {
  const select = element(
    "select",
    {id, onchange: () => told(+select.value, true)},
    ...parameter.choices.map(({value, name, meaning}) => element("option", {value}, `${name}: ${meaning}`))
  );
  return {
    root: element("div", {className: "entry"}, select),
    show: (value) => {
      select.value = value ?? +parameter.default;
    }
  };
}

function makeSlider(parameter, id, told) {
  const {min, max, step} = parameter;
  const slider = element("input", {type: "range", id, min, max, step});
  const field = element("input", {
    type: "number",
    min,
    max,
    step: parameter.type === "float" ? "any" : step,
    placeholder: "auto"
  });
  field.setAttribute("aria-label", `${parameter.name} as a number`);
  const take = (input, done) => {
    if (input.value === "" || !Number.isFinite(+input.value)) return;
    const value = +number(clamp(+input.value, min, max), 6).replace("−", "-");
    told(parameter.type === "float" ? value : Math.round(value), done);
  };
  slider.oninput = () => take(slider, false);
  slider.onchange = () => take(slider, true);
  field.onchange = () => take(field, true);
  const text = (value) => number(value, 6);
  return {
    root: element("div", {className: "entry"}, slider, field),
    limits: `${text(min)} to ${text(max)}, step ${text(step)}, default ${defaultText(parameter)}`,
    show(value) {
      const automatic = value === undefined && parameter.derived;
      if (document.activeElement !== slider || +slider.value !== value) slider.value = value ?? parameter.default;
      field.value = automatic ? "" : (value ?? parameter.default);
    }
  };
}
