// Draws frames: the pixels are 16-bit textures as they came, and the shader looks their colours up.

const vertexShader = `#version 300 es
void main() {
  vec2 corner = vec2(float(gl_VertexID & 1) * 4.0 - 1.0, float(gl_VertexID >> 1) * 4.0 - 1.0);
  gl_Position = vec4(corner, 0.0, 1.0);
}`;

// Tables by pixel value have 256 x 256 entries.
const fragmentShader = `#version 300 es
precision highp float;
precision highp int;
uniform highp usampler2D beforePixels, afterPixels;
uniform highp sampler2D beforeColors, afterColors, beforeDepths, afterDepths, signedColors;
uniform int mode;      // 0 before, 1 after, 2 before on the left and after on the right, 3 difference
uniform ivec2 size;    // of the picture
uniform int divider;   // the first column of the right side
uniform float limit;   // millimetres
uniform vec3 filled, removed, hole;
out vec4 color;

uint pixel(highp usampler2D pixels, ivec2 place) {
  return texelFetch(pixels, place * textureSize(pixels, 0) / size, 0).r;
}
vec4 entry(highp sampler2D table, uint value) {
  return texelFetch(table, ivec2(value & 255u, value >> 8), 0);
}

void main() {
  ivec2 place = ivec2(gl_FragCoord.x, size.y - 1 - int(gl_FragCoord.y));
  if (mode == 0 || (mode == 2 && place.x < divider)) {
    color = vec4(entry(beforeColors, pixel(beforePixels, place)).rgb, 1.0);
  } else if (mode != 3) {
    color = vec4(entry(afterColors, pixel(afterPixels, place)).rgb, 1.0);
  } else {
    float from = entry(beforeDepths, pixel(beforePixels, place)).r, to = entry(afterDepths, pixel(afterPixels, place)).r;
    if (from == 0.0) color = vec4(to == 0.0 ? hole : filled, 1.0);
    else if (to == 0.0) color = vec4(removed, 1.0);
    else color = texelFetch(signedColors, ivec2(clamp((to - from) / limit * 127.5 + 128.0, 0.0, 255.0), 0), 0);
  }
}`;

const samplers = [
  "beforePixels",
  "afterPixels",
  "beforeColors",
  "afterColors",
  "beforeDepths",
  "afterDepths",
  "signedColors"
];
export const modes = {before: 0, after: 1, split: 2, difference: 3};

const rgb = (text) => [0, 2, 4].map((at) => parseInt(text.slice(at, at + 2), 16));
const bytesOf = (text) =>
  Uint8Array.from({length: text.length / 2}, (_, i) => parseInt(text.slice(2 * i, 2 * i + 2), 16));

// The colours of a map by pixel value, from near to far.
export function colorTable(map, millimetres, near, far) {
  const colors = bytesOf(map.colors),
    hole = rgb(map.hole),
    steps = colors.length / 3 - 1;
  const table = new Uint8Array(4 * 65536);
  for (let raw = 0; raw < 65536; ++raw) {
    const depth = millimetres[raw],
      at = 3 * Math.round(Math.min(Math.max((depth - near) / (far - near), 0), 1) * steps);
    for (let i = 0; i < 3; ++i) table[4 * raw + i] = depth === 0 ? hole[i] : colors[at + i];
    table[4 * raw + 3] = 255;
  }
  return table;
}

export class Renderer {
  #gl;
  #uniforms = {};
  #textures = {};
  #held = {}; // what each texture holds
  #frame = null;
  mode = "after";
  divider = 0.5; // of the width
  limit = 100; // millimetres at the ends of the difference's colours
  range = {near: 0, far: 1};
  map; // of setup.colors.maps

  constructor(canvas, colors) {
    this.#gl = canvas.getContext("webgl2", {alpha: false, antialias: false, depth: false, stencil: false});
    if (!this.#gl) throw new Error("This browser has no WebGL2, which the view needs.");
    this.canvas = canvas;
    this.colors = colors;
    this.map = colors.maps[0];
    canvas.addEventListener("webglcontextlost", (event) => event.preventDefault());
    canvas.addEventListener("webglcontextrestored", () => {
      this.#held = {};
      this.#prepare();
      this.draw();
    });
    this.#prepare();
  }

  #prepare() {
    const gl = this.#gl,
      program = gl.createProgram();
    for (const [type, source] of [
      [gl.VERTEX_SHADER, vertexShader],
      [gl.FRAGMENT_SHADER, fragmentShader]
    ]) {
      const shader = gl.createShader(type);
      gl.shaderSource(shader, source);
      gl.compileShader(shader);
      gl.attachShader(program, shader);
    }
    gl.linkProgram(program);
    if (!gl.getProgramParameter(program, gl.LINK_STATUS) && !gl.isContextLost())
      throw new Error(`The view cannot be drawn: ${gl.getProgramInfoLog(program)}`);
    gl.useProgram(program);
    for (const name of [...samplers, "mode", "size", "divider", "limit", "filled", "removed", "hole"])
      this.#uniforms[name] = gl.getUniformLocation(program, name);
    samplers.forEach((name, unit) => {
      gl.activeTexture(gl.TEXTURE0 + unit);
      gl.bindTexture(gl.TEXTURE_2D, (this.#textures[name] = gl.createTexture()));
      for (const option of [gl.TEXTURE_MIN_FILTER, gl.TEXTURE_MAG_FILTER])
        gl.texParameteri(gl.TEXTURE_2D, option, gl.NEAREST);
      for (const option of [gl.TEXTURE_WRAP_S, gl.TEXTURE_WRAP_T])
        gl.texParameteri(gl.TEXTURE_2D, option, gl.CLAMP_TO_EDGE);
      gl.uniform1i(this.#uniforms[name], unit);
    });
    gl.pixelStorei(gl.UNPACK_ALIGNMENT, 1);
    for (const name of ["filled", "removed", "hole"])
      gl.uniform3fv(
        this.#uniforms[name],
        rgb(this.colors.difference[name]).map((part) => part / 255)
      );
    const signed = bytesOf(this.colors.difference.colors);
    this.#fill("signedColors", "signed", 256, 1, gl.RGB8, gl.RGB, gl.UNSIGNED_BYTE, () => signed);
  }

  // Unless it holds just this already.
  #fill(name, what, width, height, internal, format, type, make) {
    const held = this.#held[name],
      gl = this.#gl;
    if (held?.what === what) return;
    gl.activeTexture(gl.TEXTURE0 + samplers.indexOf(name));
    if (held?.width === width && held.height === height)
      gl.texSubImage2D(gl.TEXTURE_2D, 0, 0, 0, width, height, format, type, make());
    else gl.texImage2D(gl.TEXTURE_2D, 0, internal, width, height, 0, format, type, make());
    this.#held[name] = {what, width, height};
  }

  show(frame) {
    this.#frame = frame;
    this.draw();
  }

  get side() {
    return this.mode === "before" ? this.#frame.before : this.#frame.after;
  }

  // What the mode shows is brought up to date, the rest is left.
  draw() {
    if (!this.#frame) return;
    const gl = this.#gl,
      frame = this.#frame,
      {near, far} = this.range;
    const sides = {before: ["before"], after: ["after"]}[this.mode] ?? ["before", "after"];
    for (const side of sides) {
      const {width, height, pixels, millimetres, table} = frame[side];
      this.#fill(`${side}Pixels`, pixels, width, height, gl.R16UI, gl.RED_INTEGER, gl.UNSIGNED_SHORT, () => pixels);
      if (this.mode === "difference")
        this.#fill(`${side}Depths`, table, 256, 256, gl.R32F, gl.RED, gl.FLOAT, () => millimetres);
      else
        this.#fill(
          `${side}Colors`,
          [table, this.map.name, near, far].join(),
          256,
          256,
          gl.RGBA8,
          gl.RGBA,
          gl.UNSIGNED_BYTE,
          () => colorTable(this.map, millimetres, near, far)
        );
    }
    const {width, height} = this.side;
    if (this.canvas.width !== width || this.canvas.height !== height) Object.assign(this.canvas, {width, height});
    gl.viewport(0, 0, width, height);
    gl.uniform2i(this.#uniforms.size, width, height);
    gl.uniform1i(this.#uniforms.mode, modes[this.mode]);
    gl.uniform1i(this.#uniforms.divider, Math.round(this.divider * width));
    gl.uniform1f(this.#uniforms.limit, this.limit);
    gl.drawArrays(gl.TRIANGLES, 0, 3);
  }

  // The samples that the texture of a side holds, read back.
  readTexture(side) {
    const gl = this.#gl,
      {width, height} = this.#held[`${side}Pixels`];
    const buffer = gl.createFramebuffer(),
      values = new Uint32Array(4 * width * height);
    gl.bindFramebuffer(gl.FRAMEBUFFER, buffer);
    gl.framebufferTexture2D(gl.FRAMEBUFFER, gl.COLOR_ATTACHMENT0, gl.TEXTURE_2D, this.#textures[`${side}Pixels`], 0);
    gl.readPixels(0, 0, width, height, gl.RGBA_INTEGER, gl.UNSIGNED_INT, values);
    gl.bindFramebuffer(gl.FRAMEBUFFER, null);
    gl.deleteFramebuffer(buffer);
    return Uint16Array.from({length: width * height}, (_, i) => values[4 * i]);
  }
}
