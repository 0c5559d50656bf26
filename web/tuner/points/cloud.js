// The frame as points in space, for frames with intrinsics.
import {
  BufferAttribute,
  BufferGeometry,
  Color,
  LinearSRGBColorSpace,
  PerspectiveCamera,
  Points,
  PointsMaterial,
  Scene,
  WebGLRenderer
} from "three";
import {OrbitControls} from "three/addons/controls/OrbitControls.js";

export class Cloud {
  #renderer = new WebGLRenderer({antialias: false});
  #scene = new Scene();
  #camera = new PerspectiveCamera(50, 1, 0.01, 200);
  #geometry = new BufferGeometry();
  #points = new Points(this.#geometry, new PointsMaterial({size: 1.5, sizeAttenuation: false, vertexColors: true}));
  #controls;
  #placed = false;
  #waiting = false;

  constructor(root) {
    const canvas = this.#renderer.domElement;
    canvas.tabIndex = 0;
    canvas.setAttribute(
      "aria-label",
      "Points in space. Drag to turn, right drag or arrow keys to move, wheel to zoom."
    );
    canvas.setAttribute("role", "img");
    root.append(canvas);
    this.#renderer.outputColorSpace = LinearSRGBColorSpace; // the colours are those of the screen already
    this.#scene.background = new Color(0x16171a);
    this.#scene.add(this.#points);
    this.#controls = new OrbitControls(this.#camera, canvas);
    this.#controls.listenToKeyEvents(canvas);
    this.#controls.addEventListener("change", () => this.#draw());
    new ResizeObserver(() => this.#resize(root)).observe(root);
    this.#resize(root);
  }

  // How many points are there.
  get count() {
    return this.#geometry.drawRange.count;
  }

  // `colors`: red, green, blue, 255 by pixel value; metres in the scene, y up.
  show({width, height, pixels, millimetres, intrinsics}, colors, range) {
    const {fx, fy, cx, cy} = intrinsics;
    this.#room(width * height);
    const place = this.#geometry.attributes.position.array,
      color = this.#geometry.attributes.color.array;
    let count = 0;
    for (let y = 0, i = 0; y < height; ++y) {
      for (let x = 0; x < width; ++x, ++i) {
        const raw = pixels[i],
          depth = millimetres[raw] / 1000;
        if (depth === 0) continue;
        place[3 * count] = ((x - cx) / fx) * depth;
        place[3 * count + 1] = ((cy - y) / fy) * depth;
        place[3 * count + 2] = -depth;
        for (let k = 0; k < 3; ++k) color[3 * count + k] = colors[4 * raw + k];
        ++count;
      }
    }
    this.#geometry.attributes.position.needsUpdate = this.#geometry.attributes.color.needsUpdate = true;
    this.#geometry.setDrawRange(0, count);
    if (!this.#placed) {
      this.#placed = true;
      this.#controls.target.set(0, 0, -(range.near + range.far) / 2000);
      this.#camera.position.set(0, 0, 0.05);
      this.#camera.fov = (2 * Math.atan(height / 2 / fy) * 180) / Math.PI;
      this.#camera.updateProjectionMatrix();
      this.#controls.update();
    }
    this.#draw();
  }

  #room(count) {
    if (this.#geometry.attributes.position?.count === count) return;
    this.#geometry.dispose();
    this.#points.frustumCulled = false;
    this.#geometry.setAttribute("position", new BufferAttribute(new Float32Array(3 * count), 3));
    this.#geometry.setAttribute("color", new BufferAttribute(new Uint8Array(3 * count), 3, true));
  }

  #resize(root) {
    const {clientWidth, clientHeight} = root;
    if (!clientWidth || !clientHeight) return;
    this.#renderer.setSize(clientWidth, clientHeight);
    this.#camera.aspect = clientWidth / clientHeight;
    this.#camera.updateProjectionMatrix();
    this.#draw();
  }

  #draw() {
    if (this.#waiting) return;
    this.#waiting = true;
    requestAnimationFrame(() => {
      this.#waiting = false;
      this.#renderer.render(this.#scene, this.#camera);
    });
  }
}
