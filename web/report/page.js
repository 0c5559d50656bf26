"use strict";
(() => {
  const maps = JSON.parse(document.getElementById("color-maps").textContent);
  const element = (tag, properties = {}, ...children) => {
    const made = Object.assign(document.createElement(tag), properties);
    made.append(...children);
    return made;
  };
  const clamp = (value, low, high) => Math.min(Math.max(value, low), high);

  // Pixels: see pack_samples() for how they are packed.

  const once = (make) => {
    const made = new Map();
    return (key) => {
      if (!made.has(key)) made.set(key, make(key));
      return made.get(key);
    };
  };

  async function unpack(id, base) {
    const packed = Uint8Array.from(atob(document.getElementById(id).textContent), (c) => c.charCodeAt(0));
    const stream = new Blob([packed]).stream().pipeThrough(new DecompressionStream("deflate"));
    const planes = new Uint8Array(await new Response(stream).arrayBuffer());
    const count = planes.length / 2;
    const samples = new Uint16Array(count);
    for (let i = 0; i < count; ++i)
      samples[i] = ((planes[i] << 8) | planes[count + i]) + (base ? base[i] : i > 0 ? samples[i - 1] : 0);
    return samples;
  }

  // By pixel value: NaN for an invalid one, else its number before it is scaled.
  const numbers = once(async (id) => {
    const table = await unpack(id);
    const half = table.length / 2;
    return Float64Array.from({length: half}, (_, i) => [NaN, 1, -1][table[i]] * table[half + i]);
  });

  const pixels = once(async (id) => {
    const {width, height, base, meaning, scale, unit} = document.getElementById(id).dataset;
    const samples = await unpack(id, base ? (await pixels(base)).samples : null);
    const table = await numbers(meaning);
    return {width: +width, height: +height, samples, unit, value: (raw) => table[raw] * +scale};
  });

  const canRead = "DecompressionStream" in window;

  // Colours.

  async function recolor(image, name) {
    const frame = await pixels(image.dataset.pixels);
    const low = +image.dataset.low, high = +image.dataset.high;
    const colors = new Uint32Array(65536);
    for (let raw = 0; raw < 65536; ++raw) {
      const value = frame.value(raw);
      const index = Number.isNaN(value) ? 0 : 1 + Math.floor(clamp((value - low) / (high - low), 0, 1) * 254 + 0.5);
      const color = parseInt(maps[name].substr(6 * index, 6), 16);
      colors[raw] = (0xff000000 | ((color & 0xff) << 16) | (color & 0xff00) | (color >> 16)) >>> 0;
    }
    const canvas = element("canvas", {width: frame.width, height: frame.height});
    const painted = new ImageData(frame.width, frame.height);
    const words = new Uint32Array(painted.data.buffer);
    frame.samples.forEach((raw, i) => { words[i] = colors[raw]; });
    canvas.getContext("2d").putImageData(painted, 0, 0);
    return canvas.toDataURL();
  }

  let wanted = Object.keys(maps)[0];
  async function showMap(name) {
    wanted = name;
    for (const image of document.querySelectorAll("img[data-pixels]")) {
      const source = await recolor(image, name);
      if (wanted !== name) return;
      image.src = source;
    }
    document.documentElement.style.setProperty("--map", `var(--${name})`);
    document.documentElement.style.setProperty("--invalid", `var(--${name}-invalid)`);
    document.documentElement.dataset.map = name;
  }

  function addMapChoice() {
    const choice = element("span", {className: "maps"});
    choice.setAttribute("role", "radiogroup");
    choice.setAttribute("aria-label", "Colours");
    for (const name of Object.keys(maps)) {
      const button = element("input", {type: "radio", name: "map", value: name, checked: name === wanted});
      button.addEventListener("change", () => showMap(name));
      choice.append(element("label", {}, button, name));
    }
    document.querySelector(".hero h2").append(choice);
  }

  // The probe.

  const plain = (number) => String(Math.round(number * 1000) / 1000).replace("-", "−");
  const described = (frame, raw) => {
    const value = frame.value(raw);
    if (Number.isNaN(value)) return `${raw} (invalid)`;
    return frame.unit === "mm" ? `${raw} (${plain(value)} mm)` : `${raw}`;
  };

  function addProbe(figure, view) {
    const images = [...view.querySelectorAll("img[data-pixels]")];
    const output = figure.querySelector(".probe");
    if (images.length === 0 || !output) return;
    const cross = element("i", {className: "cross", hidden: true});
    view.append(cross);
    const width = +images[0].getAttribute("width"), height = +images[0].getAttribute("height");
    const apart = figure.classList.contains("apart");
    let at = [width >> 1, height >> 1], latest = 0;

    const show = async () => {
      const turn = ++latest;
      const frames = await Promise.all(images.map((image) => pixels(image.dataset.pixels)));
      if (turn !== latest) return;
      const raws = frames.map((frame) => {
        const x = Math.floor((at[0] + 0.5) * frame.width / width), y = Math.floor((at[1] + 0.5) * frame.height / height);
        return frame.samples[y * frame.width + x];
      });
      let text = `x ${at[0]}, y ${at[1]}: before ${described(frames[0], raws[0])}, after ${described(frames[1], raws[1])}`;
      const difference = frames[1].value(raws[1]) - frames[0].value(raws[0]);
      if (frames[0].unit === frames[1].unit && frames[0].unit === "mm" && !Number.isNaN(difference))
        text += `, difference ${difference > 0 ? "+" : ""}${plain(difference)} mm`;
      output.textContent = text;
      cross.hidden = apart;
      cross.style.left = `${(at[0] + 0.5) / width * 100}%`;
      cross.style.top = `${(at[1] + 0.5) / height * 100}%`;
    };
    view.addEventListener("pointermove", (event) => {
      const hit = apart ? images.find((image) => image === event.target) : view;
      if (!hit) return;
      const box = hit.getBoundingClientRect();
      at = [clamp(Math.floor((event.clientX - box.left) / box.width * width), 0, width - 1),
            clamp(Math.floor((event.clientY - box.top) / box.height * height), 0, height - 1)];
      show();
    });
    view.tabIndex = 0;
    view.setAttribute("role", "group");
    view.setAttribute("aria-label", "Pixel values: the arrow keys move the probe");
    view.addEventListener("keydown", (event) => {
      const move = {ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1]}[event.key];
      if (!move || event.target !== view) return;
      const far = event.shiftKey ? 10 : 1;
      at = [clamp(at[0] + far * move[0], 0, width - 1), clamp(at[1] + far * move[1], 0, height - 1)];
      event.preventDefault();
      show();
    });
    output.textContent = "Point at a pixel to read it.";
  }

  // The divider.

  function addDivider(figure, view) {
    figure.classList.add("divided");
    const names = [...view.querySelectorAll(".name")].map((name) => name.textContent);
    const divider = element("div", {className: "divider", tabIndex: 0});
    divider.setAttribute("role", "slider");
    divider.setAttribute("aria-label", `Divider between ${names.join(" and ")}`);
    divider.setAttribute("aria-valuemin", "0");
    divider.setAttribute("aria-valuemax", "100");
    let place = 50;
    const put = (per_cent) => {
      place = clamp(per_cent, 0, 100);
      view.style.setProperty("--at", `${place}%`);
      divider.setAttribute("aria-valuenow", String(Math.round(place)));
      divider.setAttribute("aria-valuetext", `${Math.round(place)} % ${names[0]}`);
    };
    put(place);
    view.append(divider);

    const follow = (event) => {
      const box = view.getBoundingClientRect();
      put((event.clientX - box.left) / box.width * 100);
    };
    let dragging = false;
    view.addEventListener("pointerdown", (event) => {
      if (event.button !== 0) return;
      dragging = true;
      view.setPointerCapture(event.pointerId);
      follow(event);
    });
    view.addEventListener("pointermove", (event) => { if (dragging) follow(event); });
    for (const end of ["pointerup", "pointercancel"]) view.addEventListener(end, () => { dragging = false; });
    view.addEventListener("dragstart", (event) => event.preventDefault());
    divider.addEventListener("keydown", (event) => {
      const to = {ArrowLeft: place - 1, ArrowDown: place - 1, ArrowRight: place + 1, ArrowUp: place + 1,
                  PageDown: place - 10, PageUp: place + 10, Home: 0, End: 100}[event.key];
      if (to === undefined) return;
      event.preventDefault();
      put(to);
    });
  }

  function addCopy(pre) {
    const button = element("button", {type: "button", textContent: "Copy"});
    button.addEventListener("click", () => {
      const selection = getSelection();
      selection.selectAllChildren(pre);
      button.textContent = document.execCommand("copy") ? "Copied" : "Selected";
      setTimeout(() => { button.textContent = "Copy"; }, 2000);
    });
    pre.before(button);
  }

  for (const figure of document.querySelectorAll(".pair")) {
    const view = figure.querySelector(".view");
    if (!figure.classList.contains("apart")) addDivider(figure, view);
    if (canRead) addProbe(figure, view);
  }
  if (canRead && document.querySelector("img[data-pixels]")) addMapChoice();
  document.querySelectorAll("pre").forEach(addCopy);
})();
